/**
 * @file palsysinfo.h
 * @brief Identity of the device: model, firmware, serial number, address, operating system.
 * @family sysinfo/identity
 *
 * Every text is made as 8-bit text of at most 255 characters. The W forms convert it to UTF-16. The
 * sources are non-volatile parameters (kernel control 0x010122C4 with the id of the parameter), the
 * version, firmware and OEM information of the kernel, the network adapters, and the registry key
 * HKEY_LOCAL_MACHINE "Software\Dravonel\DVLHWID". A text of the registry counts only if its type is
 * REG_SZ. Steps and failures are traced with facility 1039.
 *
 * Lengths are bytes in the A and the W forms, two for each UTF-16 character, and include the
 * terminator. No form writes a byte after the length that it is given. A source that fails decides
 * the result before a length that is null or too short. Only if both pointers are null is the
 * source not asked.
 *
 * Any thread of any process may call these functions. Each process keeps the serial number and the
 * hardware configuration that it has found first, until it ends. Everything else is read again by
 * every call.
 */
#ifndef PALSYSINFO_H_
#define PALSYSINFO_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** The size in bytes that the functions without a length expect of every buffer. */
#define PAL_IDENTITY_FIXED_LENGTH 64

/** The details of PALSysinfo_GetDeviceDetailA and PALSysinfo_GetDeviceDetailW. */
typedef enum PALDeviceDetail {
  /** See PALSysinfo_GetHwConfigExA. */
  PAL_DETAIL_HARDWARE_CONFIGURATION = 0,
  /** See PALSysinfo_GetSerialNumberExA. */
  PAL_DETAIL_SERIAL_NUMBER = 1,
  /** See PALSysinfo_GetModelExA. */
  PAL_DETAIL_MODEL = 2,
  /** The name of the model for people, parameter 0x00D6. */
  PAL_DETAIL_DISPLAY_MODEL = 3,
  /** See PALSysinfo_GetFirmwareVerExA. */
  PAL_DETAIL_FIRMWARE_VERSION = 4,
  /** See PALSysinfo_GetOSExA. */
  PAL_DETAIL_OS = 5,
  /** See PALSysinfo_GetOSVerExA. */
  PAL_DETAIL_OS_VERSION = 6,
  /** A date from the factory, "07/25/2014" (month, day, year), parameter 0x0003. */
  PAL_DETAIL_FACTORY_DATE_1 = 7,
  /** A second date from the factory, parameter 0x0004. */
  PAL_DETAIL_FACTORY_DATE_2 = 8,
  /**
   * The first four characters of the hardware configuration, then the serial number. A serial
   * number of more than 11 characters is replaced by the Ethernet address, or by nothing if that
   * cannot be read.
   */
  PAL_DETAIL_QUALIFIED_SERIAL_NUMBER = 9,
  /** See PALSysinfo_GetEtherMACAddressA. */
  PAL_DETAIL_ETHERNET_ADDRESS = 10,
  /** The number of details. No device knows 11 to 13. */
  PAL_DEVICE_DETAIL_COUNT = 14
} PALDeviceDetail;

/** Does nothing: there is nothing to prepare. @retval S_OK  Always. */
HRESULT PALAPI PALSysinfo_Init(void);

/** Does nothing. What the process keeps stays until it ends. @retval S_OK  Always. */
HRESULT PALAPI PALSysinfo_Term(void);

/**
 * Gives the name of the model, such as "RM11": parameter 0x00D5.
 *
 * @param[out] buffer     Receives the text with its terminator. Null to ask only for the length.
 *                        Unchanged on failure.
 * @param[in,out] length  [bytes] In: the size of the buffer. Out: the bytes used, or the bytes
 *                        needed if the buffer is null or too short. Unchanged on every other
 *                        failure. Not null.
 *
 * @retval S_OK    The text is given, or with a null buffer its length.
 * @retval PAL_SYSINFO_E_TOO_SHORT      The buffer is too short. Nothing is written to it.
 * @retval PAL_SYSINFO_E_INVALID_INPUT  @p length is null.
 * @retval E_FAIL  The parameter cannot be read or holds no byte.
 */
HRESULT PALAPI PALSysinfo_GetModelExA(char* buffer, DWORD* length);
/** Gives the name of the model in UTF-16. @like PALSysinfo_GetModelExA */
HRESULT PALAPI PALSysinfo_GetModelExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the version of the firmware, such as "1.20": the text from byte 63 on of the kernel's
 * firmware information, control 0x01012000.
 *
 * The A form needs one byte more than the text with its terminator, and the W form one character
 * more. The A form also reports that longer length when it has given the text.
 *
 * @retval E_FAIL  The kernel control fails.
 * @like PALSysinfo_GetModelExA
 */
HRESULT PALAPI PALSysinfo_GetFirmwareVerExA(char* buffer, DWORD* length);
/** Gives the version of the firmware in UTF-16. @like PALSysinfo_GetFirmwareVerExA */
HRESULT PALAPI PALSysinfo_GetFirmwareVerExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the serial number. The process keeps it until it ends. The first of these sources that
 * gives a text is used:
 *
 * 1. Parameter 0x0048. If it is there but empty, source 2 is left out.
 * 2. Parameter 0x0002: as text if the OEM information is "Dravonel Rx" or "Dravonel RQ2". Otherwise
 *    its first six bytes as hexadecimal digits, the last byte first. From Windows CE 5.2 on one
 *    leading zero is dropped; in earlier versions all leading zeros are.
 * 3. If the OEM information begins with "Greywing": the platform id of the device id, control
 *    0x01010054, without its first eight bytes.
 * 4. The registry value "SerialNumber".
 * 5. The address of the first Ethernet adapter that is not "RNDISFN1", or twelve zeros.
 *
 * @retval PAL_SYSINFO_E_SOURCE_TOO_LONG  The serial number has more than 255 characters.
 * @like PALSysinfo_GetHwConfigExA
 */
HRESULT PALAPI PALSysinfo_GetSerialNumberExA(char* buffer, DWORD* length);
/** Gives the serial number in UTF-16. @like PALSysinfo_GetSerialNumberExA */
HRESULT PALAPI PALSysinfo_GetSerialNumberExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the hardware configuration, such as "CG0". The process keeps it until it ends. The first of
 * these sources that gives a text is used: parameter 0x000A (0x0027 if the OEM information is
 * "Dravonel Rx"), the registry value "HardwareCfgString", the text "CG0". It has at most 31
 * characters.
 *
 * @param[out] buffer     Receives the text with its terminator. Null to ask only for the length.
 *                        Unchanged on failure.
 * @param[in,out] length  [bytes] In: the size of the buffer. Out: the bytes used, or the bytes
 *                        needed if the buffer is null or too short. Unchanged on every other
 *                        failure. Not null.
 *
 * @retval S_OK  The text is given, or with a null buffer its length.
 * @retval PAL_SYSINFO_E_TOO_SHORT      The buffer is too short. Nothing is written to it.
 * @retval PAL_SYSINFO_E_INVALID_INPUT  @p length is null.
 * @retval PAL_SYSINFO_E_SOURCE_FAILED  The device has no OEM information, or it cannot be read.
 */
HRESULT PALAPI PALSysinfo_GetHwConfigExA(char* buffer, DWORD* length);
/** Gives the hardware configuration in UTF-16. @like PALSysinfo_GetHwConfigExA */
HRESULT PALAPI PALSysinfo_GetHwConfigExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the name of the operating system, from GetVersionExW and SystemParametersInfoW action 257:
 * the type of the platform if that is "PocketPC", in any case, else "WINCE".
 *
 * @retval PAL_SYSINFO_E_SOURCE_FAILED  The version cannot be read, or the platform is not Windows
 *                     CE (platform id 3).
 * @like PALSysinfo_GetHwConfigExA
 */
HRESULT PALAPI PALSysinfo_GetOSExA(char* buffer, DWORD* length);
/** Gives the name of the operating system in UTF-16. @like PALSysinfo_GetOSExA */
HRESULT PALAPI PALSysinfo_GetOSExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the version of the operating system, such as "5.2.19202", from GetVersionExW: major number,
 * minor number and build number.
 * @like PALSysinfo_GetOSExA
 */
HRESULT PALAPI PALSysinfo_GetOSVerExA(char* buffer, DWORD* length);
/** Gives the version of the operating system in UTF-16. @like PALSysinfo_GetOSVerExA */
HRESULT PALAPI PALSysinfo_GetOSVerExW(WCHAR* buffer, DWORD* length);

/**
 * Gives the name of the model in UTF-16 (see PALSysinfo_GetModelExA).
 *
 * @param[out] buffer  Room for 64 bytes: 32 characters, or 64 in the A form. Receives the text with
 *                     its terminator. Unchanged on failure. Null asks only whether there is a text.
 *
 * @retval S_OK    Answered.
 * @retval PAL_SYSINFO_E_TOO_SHORT  The text is too long for the buffer.
 * @retval E_FAIL  The parameter cannot be read or holds no byte.
 */
HRESULT PALAPI PALSysinfo_GetModel(WCHAR* buffer);
/** The second name of PALSysinfo_GetModel. @like PALSysinfo_GetModel */
HRESULT PALAPI PALSysinfo_GetModelW(WCHAR* buffer);
/** Gives the name of the model in 8-bit text. @like PALSysinfo_GetModel */
HRESULT PALAPI PALSysinfo_GetModelA(char* buffer);

/**
 * Gives the version of the firmware in UTF-16 (see PALSysinfo_GetFirmwareVerExA). One character of
 * the buffer must be left over.
 *
 * @retval E_FAIL  The kernel control fails.
 * @like PALSysinfo_GetModel
 */
HRESULT PALAPI PALSysinfo_GetFirmwareVersion(WCHAR* buffer);
/** The second name of PALSysinfo_GetFirmwareVersion. @like PALSysinfo_GetFirmwareVersion */
HRESULT PALAPI PALSysinfo_GetFirmwareVersionW(WCHAR* buffer);
/** Gives the version of the firmware in 8-bit text. @like PALSysinfo_GetFirmwareVersion */
HRESULT PALAPI PALSysinfo_GetFirmwareVersionA(char* buffer);

/**
 * Gives the serial number in UTF-16 (see PALSysinfo_GetSerialNumberExA).
 *
 * @retval PAL_SYSINFO_E_SOURCE_TOO_LONG  The serial number has more than 255 characters.
 * @like PALSysinfo_GetHardwareConfiguration
 */
HRESULT PALAPI PALSysinfo_GetSerialNumber(WCHAR* buffer);
/** The second name of PALSysinfo_GetSerialNumber. @like PALSysinfo_GetSerialNumber */
HRESULT PALAPI PALSysinfo_GetSerialNumberW(WCHAR* buffer);
/** Gives the serial number in 8-bit text. @like PALSysinfo_GetSerialNumber */
HRESULT PALAPI PALSysinfo_GetSerialNumberA(char* buffer);

/**
 * Gives the hardware configuration in UTF-16 (see PALSysinfo_GetHwConfigExA).
 *
 * @param[out] buffer  Room for 64 bytes: 32 characters, or 64 in the A form. Receives the text with
 *                     its terminator. Unchanged on failure. Null asks only whether there is a text.
 *
 * @retval S_OK  Answered.
 * @retval PAL_SYSINFO_E_TOO_SHORT      The text is too long for the buffer.
 * @retval PAL_SYSINFO_E_SOURCE_FAILED  The device has no OEM information, or it cannot be read.
 */
HRESULT PALAPI PALSysinfo_GetHardwareConfiguration(WCHAR* buffer);
/** The second name of this function. @like PALSysinfo_GetHardwareConfiguration */
HRESULT PALAPI PALSysinfo_GetHardwareConfigurationW(WCHAR* buffer);
/** Gives the hardware configuration in 8-bit text. @like PALSysinfo_GetHardwareConfiguration */
HRESULT PALAPI PALSysinfo_GetHardwareConfigurationA(char* buffer);

/**
 * Gives the Ethernet address in UTF-16: the six bytes of parameter 0x0001, each with as few
 * hexadecimal digits as it needs. The bytes 00 0A become "0a".
 *
 * @param[out] buffer  Room for 64 bytes: 32 characters, or 64 in the A form. Receives the text with
 *                     its terminator. Unchanged on failure. May be null.
 *
 * @retval S_OK  Answered. Also with a null buffer.
 * @retval PAL_SYSINFO_E_TOO_SHORT  The parameter cannot be read or holds no byte.
 */
HRESULT PALAPI PALSysinfo_GetEtherMACAddress(WCHAR* buffer);
/** The second name of PALSysinfo_GetEtherMACAddress. @like PALSysinfo_GetEtherMACAddress */
HRESULT PALAPI PALSysinfo_GetEtherMACAddressW(WCHAR* buffer);
/** Gives the Ethernet address in 8-bit text. @like PALSysinfo_GetEtherMACAddress */
HRESULT PALAPI PALSysinfo_GetEtherMACAddressA(char* buffer);

/**
 * Gives the name and the version of the operating system in UTF-16 (see PALSysinfo_GetOSExA and
 * PALSysinfo_GetOSVerExA).
 *
 * @param[out] name     Room for 64 bytes: 32 characters, or 64 in the A form. Receives the name.
 *                      May be null.
 * @param[out] version  Room for 64 bytes. Receives the version after the name is written. May be
 *                      null.
 *
 * @retval S_OK  Answered.
 * @retval PAL_SYSINFO_E_TOO_SHORT  The version is too long for its buffer. The name is written.
 * @retval PAL_SYSINFO_E_SOURCE_FAILED  The version cannot be read, or the platform is not Windows
 *               CE. If both queries fail, neither buffer is changed.
 */
HRESULT PALAPI PALSysinfo_GetOperatingSystemW(WCHAR* name, WCHAR* version);

/**
 * Gives the name and the version of the operating system in 8-bit text.
 * @like PALSysinfo_GetOperatingSystemW
 */
HRESULT PALAPI PALSysinfo_GetOperatingSystemA(char* name, char* version);

/**
 * Gives the version of the operating system in UTF-16. The name is written first, and the version
 * over it. Callers depend on this.
 *
 * @param[out] buffer  Room for 64 bytes, 32 characters. Holds the name if only the version fails.
 *                     May be null.
 * @like PALSysinfo_GetOperatingSystemW
 */
HRESULT PALAPI PALSysinfo_GetOperatingSystem(WCHAR* buffer);

/**
 * Gives one detail of the device, by its number.
 *
 * @param detail          #PALDeviceDetail, 0 to 10.
 * @param[in,out] length  [bytes] In: the size of the buffer. Out: the bytes used, or the bytes
 *                        needed if the buffer is null or too short. Unchanged on every other
 *                        failure. A factory date or an Ethernet address that cannot be read needs
 *                        256 bytes (512 in UTF-16), and is then empty. Not null.
 *
 * @retval E_NOTIMPL  @p detail is 11, 12 or 13, whatever the other arguments are.
 * @retval PAL_SYSINFO_E_INVALID_INPUT  @p detail is above 13 or negative, or @p length is null.
 * @retval E_FAIL     Model, display model: the parameter cannot be read or holds no byte. Firmware
 *                    version: the kernel control fails.
 * @retval PAL_SYSINFO_E_SOURCE_FAILED  Serial number, hardware configuration, qualified serial
 *                    number: there is no OEM information. Operating system: the version cannot be
 *                    read, or the platform is not Windows CE.
 * @like PALSysinfo_GetSerialNumberExA
 */
HRESULT PALAPI PALSysinfo_GetDeviceDetailA(DWORD detail, char* buffer, DWORD* length);
/** Gives one detail of the device in UTF-16, by its number. @like PALSysinfo_GetDeviceDetailA */
HRESULT PALAPI PALSysinfo_GetDeviceDetailW(DWORD detail, WCHAR* buffer, DWORD* length);

/**
 * Tells whether this is a device of the maker, or another device on which the data-collection
 * software was enabled. The first is told by the OEM information, SystemParametersInfoW action 258,
 * which then contains "Dravonel"; the second by PALMFGOpt_IsDataCollectionContentEnabled.
 *
 * @retval S_OK    Yes.
 * @retval E_FAIL  No. Also if neither can be read.
 */
HRESULT PALAPI PALSysinfo_IsDravonelDevice(void);

PAL_INTERFACE_END

#endif /* PALSYSINFO_H_ */
