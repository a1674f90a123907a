/**
 * @file palsysinfo.h
 * @brief Which device this is: model, firmware, serial number, address, operating system.
 *
 * Every text is made as 8-bit text of at most 255 characters; the W forms widen it to UTF-16. It
 * comes from non-volatile parameters (kernel control 0x010122C4 with the parameter's id), from the
 * kernel's version, firmware and OEM information, from the network adapters, or from the registry
 * key HKEY_LOCAL_MACHINE\Software\Dravonel\DVLHWID. All is traced with facility 1039.
 *
 * Lengths are bytes in the A and the W forms, two for each UTF-16 character, and count the
 * terminator. No form writes a byte behind the length that it is given.
 *
 * Any thread of any process may call. A process keeps the serial number and the hardware
 * configuration that it found first until it ends; a change shows in the next process. Everything
 * else is read anew at each call.
 */
#ifndef PALSYSINFO_H_
#define PALSYSINFO_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** The size in bytes that the functions without a length take every buffer to have. */
#define PAL_IDENTITY_FIXED_LENGTH 64

/** What PALSysinfo_GetDeviceDetailA and PALSysinfo_GetDeviceDetailW are asked for. */
typedef enum PALDeviceDetail {
  /** As PALSysinfo_GetHwConfigExA. */
  PAL_DETAIL_HARDWARE_CONFIGURATION = 0,
  /** As PALSysinfo_GetSerialNumberExA. */
  PAL_DETAIL_SERIAL_NUMBER = 1,
  /** As PALSysinfo_GetModelExA. */
  PAL_DETAIL_MODEL = 2,
  /** The model's name for people, parameter 0x00D6. */
  PAL_DETAIL_DISPLAY_MODEL = 3,
  /** As PALSysinfo_GetFirmwareVerExA. */
  PAL_DETAIL_FIRMWARE_VERSION = 4,
  /** As PALSysinfo_GetOSExA. */
  PAL_DETAIL_OS = 5,
  /** As PALSysinfo_GetOSVerExA. */
  PAL_DETAIL_OS_VERSION = 6,
  /** A date from the factory, "07/25/2014" (month, day, year), parameter 0x0003. */
  PAL_DETAIL_FACTORY_DATE_1 = 7,
  /** Another one of the same form, parameter 0x0004. */
  PAL_DETAIL_FACTORY_DATE_2 = 8,
  /**
   * The first four characters of the hardware configuration and the serial number. In place of a
   * serial number of more than 11 characters stands the Ethernet address, or nothing where that
   * cannot be read.
   */
  PAL_DETAIL_QUALIFIED_SERIAL_NUMBER = 9,
  /** As PALSysinfo_GetEtherMACAddressA. */
  PAL_DETAIL_ETHERNET_ADDRESS = 10,
  /** 11 to 13 are not known on any device. */
  PAL_DEVICE_DETAIL_COUNT = 14
} PALDeviceDetail;

/**
 * Does nothing; the queries need no preparation.
 * @retval S_OK always
 */
HRESULT PALAPI PALSysinfo_Init(void);

/**
 * Does nothing. What the process keeps stays until it ends.
 * @retval S_OK always
 */
HRESULT PALAPI PALSysinfo_Term(void);

/**
 * Gives the model's name, such as "RM11".
 *
 * From parameter 0x00D5.
 *
 * @param buffer  Receives the text with its terminator; null to ask for the length it needs.
 * @param length  In: the size of @p buffer in bytes. Out: the bytes taken, or, where
 *                @p buffer is null or too short, the bytes needed. Not null. Unchanged on every
 *                other failure.
 * @retval S_OK       Done, or with a null @p buffer: the length is told.
 * @retval PAL_SYSINFO_E_TOO_SHORT @p length is too short; nothing is written to @p buffer.
 * @retval PAL_SYSINFO_E_INVALID_INPUT @p length is null.
 * @retval E_FAIL     The parameter cannot be read or holds no byte.
 */
HRESULT PALAPI PALSysinfo_GetModelExA(char* buffer, DWORD* length);
/** As PALSysinfo_GetModelExA, in UTF-16; lengths are bytes here too. */
HRESULT PALAPI PALSysinfo_GetModelExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the firmware's version, such as "1.20".
 *
 * From the kernel's firmware information, control 0x01012000: the text from byte 63 on. The A form
 * needs one byte, the W form one character more than the text with its terminator takes; the A
 * form also tells that longer length when it has written the text.
 *
 * @param buffer  Receives the text with its terminator; null to ask for the length it needs.
 * @param length  In: the size of @p buffer in bytes. Out: the bytes taken, or, where
 *                @p buffer is null or too short, the bytes needed. Not null. Unchanged on every
 *                other failure.
 * @retval S_OK       Done, or with a null @p buffer: the length is told.
 * @retval PAL_SYSINFO_E_TOO_SHORT @p length is too short; nothing is written to @p buffer.
 * @retval PAL_SYSINFO_E_INVALID_INPUT @p length is null.
 * @retval E_FAIL     The kernel control fails.
 */
HRESULT PALAPI PALSysinfo_GetFirmwareVerExA(char* buffer, DWORD* length);
/** As PALSysinfo_GetFirmwareVerExA, in UTF-16; lengths are bytes here too. */
HRESULT PALAPI PALSysinfo_GetFirmwareVerExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the serial number.
 *
 * The first of these that gives a text: parameter 0x0048; parameter 0x0002 (OEM information
 * "Dravonel Rx" or "Dravonel RQ2": as text; else its first six bytes, last one first, as
 * hexadecimal digits without one leading zero, before Windows CE 5.2 without any); with OEM
 * information that begins with "Greywing" the platform id of the device id, control 0x01010054,
 * behind its first eight bytes; the registry value "SerialNumber"; the address of the first
 * Ethernet adapter that is not "RNDISFN1"; twelve zeros. Kept for the life of the process.
 *
 * @param buffer  Receives the text with its terminator; null to ask for the length it needs.
 * @param length  In: the size of @p buffer in bytes. Out: the bytes taken, or, where
 *                @p buffer is null or too short, the bytes needed. Not null. Unchanged on every
 *                other failure.
 * @retval S_OK       Done, or with a null @p buffer: the length is told.
 * @retval PAL_SYSINFO_E_TOO_SHORT @p length is too short; nothing is written to @p buffer.
 * @retval PAL_SYSINFO_E_INVALID_INPUT @p length is null.
 * @retval 0xFFFFFFFF The device has no OEM information, or it cannot be read.
 * @retval 0xFFFFFFF8 The serial number has more than 255 characters.
 */
HRESULT PALAPI PALSysinfo_GetSerialNumberExA(char* buffer, DWORD* length);
/** As PALSysinfo_GetSerialNumberExA, in UTF-16; lengths are bytes here too. */
HRESULT PALAPI PALSysinfo_GetSerialNumberExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the hardware configuration, such as "CG0".
 *
 * The first of these that gives a text: parameter 0x000A (OEM information "Dravonel Rx": 0x0027),
 * the registry value "HardwareCfgString", "CG0". At most 31 characters. Kept for the life of the
 * process.
 *
 * @param buffer  Receives the text with its terminator; null to ask for the length it needs.
 * @param length  In: the size of @p buffer in bytes. Out: the bytes taken, or, where
 *                @p buffer is null or too short, the bytes needed. Not null. Unchanged on every
 *                other failure.
 * @retval S_OK       Done, or with a null @p buffer: the length is told.
 * @retval PAL_SYSINFO_E_TOO_SHORT @p length is too short; nothing is written to @p buffer.
 * @retval PAL_SYSINFO_E_INVALID_INPUT @p length is null.
 * @retval 0xFFFFFFFF The device has no OEM information, or it cannot be read.
 */
HRESULT PALAPI PALSysinfo_GetHwConfigExA(char* buffer, DWORD* length);
/** As PALSysinfo_GetHwConfigExA, in UTF-16; lengths are bytes here too. */
HRESULT PALAPI PALSysinfo_GetHwConfigExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the operating system's name: the platform type where that is "PocketPC" in whatever case,
 * else "WINCE".
 *
 * From GetVersionExW and the platform type, SystemParametersInfoW action 257.
 *
 * @param buffer  Receives the text with its terminator; null to ask for the length it needs.
 * @param length  In: the size of @p buffer in bytes. Out: the bytes taken, or, where
 *                @p buffer is null or too short, the bytes needed. Not null. Unchanged on every
 *                other failure.
 * @retval S_OK       Done, or with a null @p buffer: the length is told.
 * @retval PAL_SYSINFO_E_TOO_SHORT @p length is too short; nothing is written to @p buffer.
 * @retval PAL_SYSINFO_E_INVALID_INPUT @p length is null.
 * @retval 0xFFFFFFFF The version cannot be read, or the platform is not Windows CE (platform id
 *                    3).
 */
HRESULT PALAPI PALSysinfo_GetOSExA(char* buffer, DWORD* length);
/** As PALSysinfo_GetOSExA, in UTF-16; lengths are bytes here too. */
HRESULT PALAPI PALSysinfo_GetOSExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the operating system's version, such as "5.2.19202": major, minor and build number.
 *
 * From GetVersionExW.
 *
 * @param buffer  Receives the text with its terminator; null to ask for the length it needs.
 * @param length  In: the size of @p buffer in bytes. Out: the bytes taken, or, where
 *                @p buffer is null or too short, the bytes needed. Not null. Unchanged on every
 *                other failure.
 * @retval S_OK       Done, or with a null @p buffer: the length is told.
 * @retval PAL_SYSINFO_E_TOO_SHORT @p length is too short; nothing is written to @p buffer.
 * @retval PAL_SYSINFO_E_INVALID_INPUT @p length is null.
 * @retval 0xFFFFFFFF The version cannot be read, or the platform is not Windows CE (platform id
 *                    3).
 */
HRESULT PALAPI PALSysinfo_GetOSVerExA(char* buffer, DWORD* length);
/** As PALSysinfo_GetOSVerExA, in UTF-16; lengths are bytes here too. */
HRESULT PALAPI PALSysinfo_GetOSVerExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the model's name in UTF-16.
 *
 * From parameter 0x00D5.
 *
 * @param buffer  Room for 64 bytes, 32 characters; receives the text with its terminator and is
 *                unchanged on failure. Null only asks whether there is a text.
 * @retval S_OK       Done.
 * @retval PAL_SYSINFO_E_TOO_SHORT The text is too long for the buffer.
 * @retval E_FAIL     The parameter cannot be read or holds no byte.
 */
HRESULT PALAPI PALSysinfo_GetModel(WCHAR* buffer);
/** The same function as PALSysinfo_GetModel, under its second name. */
HRESULT PALAPI PALSysinfo_GetModelW(WCHAR* buffer);
/** As PALSysinfo_GetModel, in 8-bit text: the 64 bytes have room for 64 characters. */
HRESULT PALAPI PALSysinfo_GetModelA(char* buffer);

/**
 * Gives the firmware's version in UTF-16.
 *
 * From the kernel's firmware information, control 0x01012000: the text from byte 63 on. As in
 * PALSysinfo_GetFirmwareVerExW one character has to be left free.
 *
 * @param buffer  Room for 64 bytes, 32 characters; receives the text with its terminator and is
 *                unchanged on failure. Null only asks whether there is a text.
 * @retval S_OK       Done.
 * @retval PAL_SYSINFO_E_TOO_SHORT The text is too long for the buffer.
 * @retval E_FAIL     The kernel control fails.
 */
HRESULT PALAPI PALSysinfo_GetFirmwareVersion(WCHAR* buffer);
/** The same function as PALSysinfo_GetFirmwareVersion, under its second name. */
HRESULT PALAPI PALSysinfo_GetFirmwareVersionW(WCHAR* buffer);
/** As PALSysinfo_GetFirmwareVersion, in 8-bit text: the 64 bytes have room for 64 characters. */
HRESULT PALAPI PALSysinfo_GetFirmwareVersionA(char* buffer);

/**
 * Gives the serial number in UTF-16.
 *
 * From where PALSysinfo_GetSerialNumberExA has it.
 *
 * @param buffer  Room for 64 bytes, 32 characters; receives the text with its terminator and is
 *                unchanged on failure. Null only asks whether there is a text.
 * @retval S_OK       Done.
 * @retval PAL_SYSINFO_E_TOO_SHORT The text is too long for the buffer.
 * @retval 0xFFFFFFFF The device has no OEM information, or it cannot be read.
 * @retval 0xFFFFFFF8 The serial number has more than 255 characters.
 */
HRESULT PALAPI PALSysinfo_GetSerialNumber(WCHAR* buffer);
/** The same function as PALSysinfo_GetSerialNumber, under its second name. */
HRESULT PALAPI PALSysinfo_GetSerialNumberW(WCHAR* buffer);
/** As PALSysinfo_GetSerialNumber, in 8-bit text: the 64 bytes have room for 64 characters. */
HRESULT PALAPI PALSysinfo_GetSerialNumberA(char* buffer);

/**
 * Gives the hardware configuration in UTF-16.
 *
 * From where PALSysinfo_GetHwConfigExA has it.
 *
 * @param buffer  Room for 64 bytes, 32 characters; receives the text with its terminator and is
 *                unchanged on failure. Null only asks whether there is a text.
 * @retval S_OK       Done.
 * @retval PAL_SYSINFO_E_TOO_SHORT The text is too long for the buffer.
 * @retval 0xFFFFFFFF The device has no OEM information, or it cannot be read.
 */
HRESULT PALAPI PALSysinfo_GetHardwareConfiguration(WCHAR* buffer);
/** The same function as PALSysinfo_GetHardwareConfiguration, under its second name. */
HRESULT PALAPI PALSysinfo_GetHardwareConfigurationW(WCHAR* buffer);
/** As PALSysinfo_GetHardwareConfiguration, in 8-bit text: the 64 bytes have room for 64
 * characters. */
HRESULT PALAPI PALSysinfo_GetHardwareConfigurationA(char* buffer);

/**
 * Gives the Ethernet address in UTF-16.
 *
 * From parameter 0x0001: six bytes, each in as few hexadecimal digits as it needs, so that 00:0A
 * gives "0a".
 *
 * @param buffer  Room for 64 bytes, 32 characters; receives the text with its terminator and is
 *                unchanged on failure. Null only asks whether there is a text.
 * @retval S_OK       Done; also with a null @p buffer.
 * @retval PAL_SYSINFO_E_TOO_SHORT The parameter cannot be read or holds no byte.
 */
HRESULT PALAPI PALSysinfo_GetEtherMACAddress(WCHAR* buffer);
/** The same function as PALSysinfo_GetEtherMACAddress, under its second name. */
HRESULT PALAPI PALSysinfo_GetEtherMACAddressW(WCHAR* buffer);
/** As PALSysinfo_GetEtherMACAddress, in 8-bit text: the 64 bytes have room for 64 characters. */
HRESULT PALAPI PALSysinfo_GetEtherMACAddressA(char* buffer);

/**
 * Gives the operating system's name and version in UTF-16.
 *
 * From where PALSysinfo_GetOSExA and PALSysinfo_GetOSVerExA have them.
 *
 * @param name     Room for 64 bytes, 32 characters; receives the name. May be null.
 * @param version  Room for 64 bytes; receives the version once the name is written. May be null.
 * @retval S_OK       Done.
 * @retval PAL_SYSINFO_E_TOO_SHORT The version does not fit 32 characters; the name is written.
 * @retval 0xFFFFFFFF The version cannot be read, or the platform is not Windows CE; neither buffer
 *                    is changed where both queries fail.
 */
HRESULT PALAPI PALSysinfo_GetOperatingSystemW(WCHAR* name, WCHAR* version);
/** As PALSysinfo_GetOperatingSystemW, in 8-bit text. */
HRESULT PALAPI PALSysinfo_GetOperatingSystemA(char* name, char* version);

/**
 * Gives the operating system's version in UTF-16: the name is written first and the version over
 * it, which callers rely on.
 *
 * @param buffer  Room for 64 bytes, 32 characters; holds the name where only the version fails. May
 *                be null.
 * @retval S_OK       Done.
 * @retval PAL_SYSINFO_E_TOO_SHORT The version does not fit 32 characters; the buffer holds the
 * name.
 * @retval 0xFFFFFFFF The version cannot be read, or the platform is not Windows CE.
 */
HRESULT PALAPI PALSysinfo_GetOperatingSystem(WCHAR* buffer);

/**
 * Gives one detail of the device, by its number.
 *
 * @param detail  A PALDeviceDetail, 0 to 10.
 * @param buffer  Receives the text with its terminator; null to ask for the length it needs.
 * @param length  In: the size of @p buffer in bytes. Out: the bytes taken, or, where @p buffer is
 *                null or too short, the bytes needed. Not null. Unchanged on every other failure.
 *                A factory date or Ethernet address that cannot be read needs 256 bytes (512 in
 *                UTF-16) and is then empty.
 * @retval S_OK       Done, or with a null @p buffer: the length is told.
 * @retval E_NOTIMPL  @p detail is 11, 12 or 13, whatever the other arguments are.
 * @retval PAL_SYSINFO_E_TOO_SHORT @p length is too short; nothing is written to @p buffer.
 * @retval PAL_SYSINFO_E_INVALID_INPUT @p detail is above 13 or negative, or @p length is null.
 * @retval E_FAIL     Model, display model: the parameter cannot be read or holds no byte. Firmware
 *                    version: the kernel control fails.
 * @retval 0xFFFFFFFF Serial number, hardware configuration, qualified serial number: there is no
 *                    OEM information. Operating system: the version cannot be read, or the platform
 *                    is not Windows CE.
 * @retval 0xFFFFFFF8 The serial number has more than 255 characters.
 */
HRESULT PALAPI PALSysinfo_GetDeviceDetailA(DWORD detail, char* buffer, DWORD* length);
/** As PALSysinfo_GetDeviceDetailA, in UTF-16; lengths are bytes here too. */
HRESULT PALAPI PALSysinfo_GetDeviceDetailW(DWORD detail, WCHAR* buffer, DWORD* length);

/**
 * Tells whether this is one of the maker's own devices, or one onto which the data-collection
 * software has been let.
 *
 * From the OEM information, SystemParametersInfoW action 258, and where that does not contain
 * "Dravonel" from PALMFGOpt_IsDataCollectionContentEnabled.
 *
 * @retval S_OK   Yes.
 * @retval E_FAIL No; also where neither can be read.
 */
HRESULT PALAPI PALSysinfo_IsDravonelDevice(void);

PAL_INTERFACE_END

#endif /* PALSYSINFO_H_ */
