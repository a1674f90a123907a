/**
 * @file paldevcap.h
 * @brief Capabilities: which optional ones the device has, and whether they are enabled.
 * @family sysinfo/capability
 *
 * Ten capabilities have a name: "Camera", "Wifi", "Bluetooth", "InternalScanner", "Vibrate",
 * "WWAN", "GPS", "Compass", "Accelerometer" and "Pedometer". Upper and lower case do not matter. A
 * name of more than 127 characters is no capability: nothing is asked, not even a plug-in.
 *
 * The answers are a PALCapabilityState and no HRESULT. They come from the manufacturing options
 * (palmfgopt.h), from drivers, files and network interfaces. Every call asks these again.
 *
 * A plug-in can supply a capability, with one of these names or with another. It stores a REG_DWORD
 * with that name under HKEY_LOCAL_MACHINE "Software\Dravonel\PAL\DeviceCapabilities": 0 for not
 * installed, any other number for installed. Only PALDevCap_GetDevCapsA and PALDevCap_GetDevCapsW
 * ask it.
 *
 * Any thread of any process may call these functions. They take no lock. Files and drivers are
 * opened without sharing: of two calls at once one can find the file or driver missing. Steps and
 * failures are traced with facility 1039.
 */
#ifndef PALDEVCAP_H_
#define PALDEVCAP_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** The answers of this family. */
typedef enum PALCapabilityState {
  /** Nothing is known of the capability. */
  PAL_CAPABILITY_NOT_DETERMINED = 0,
  /** The device has it. */
  PAL_CAPABILITY_INSTALLED = 1,
  /** The device does not have it. */
  PAL_CAPABILITY_NOT_INSTALLED = 2,
  /** The question failed. */
  PAL_CAPABILITY_ERROR = 3,
  /** It is switched off. Also the answer of some capabilities that the device does not have. */
  PAL_CAPABILITY_DISABLED = 4,
  /** It can be used. */
  PAL_CAPABILITY_ENABLED = 5
} PALCapabilityState;

/**
 * Tells whether a capability is installed.
 *
 * The answer of a plug-in comes first. Without one the device answers, each name by one function:
 *
 * | capability      | the answer                                                    |
 * |-----------------|---------------------------------------------------------------|
 * | Camera          | PalSysinfo_IsCameraInstalled                                  |
 * | Wifi            | by the network interfaces, see below                          |
 * | Bluetooth       | PalSysinfo_IsBluetoothInstalled                               |
 * | InternalScanner | PalSysinfo_IsIntScannerInstalled                              |
 * | Vibrate         | installed, or not installed if PALVIBIsInstalled fails        |
 * | WWAN            | PalSysinfo_IsWwanInstalled                                    |
 * | GPS             | PalSysinfo_IsGpsInstalled                                     |
 * | Compass         | PalSysinfo_IsCompassInstalled                                 |
 * | Accelerometer   | PalSysinfo_IsAccelInstalled                                   |
 * | Pedometer       | PalSysinfo_IsPedometerInstalled                               |
 *
 * Wifi is installed if an interface of type 6 has the description "AR6K_SD1" or "TIWLN1", in any
 * case. The interfaces with the indexes from 0 up to and including their number are asked, but no
 * index above 256. The answer is an error if GetNumberOfInterfaces fails, or if it counts more than
 * 256 interfaces and none of those that were asked matches.
 *
 * @param name  The name of the capability, as null-terminated text: 8-bit in the A form, UTF-16 in
 *              the W form. No capability has a name of more than 127 characters.
 *
 * @retval PAL_CAPABILITY_NOT_DETERMINED  The name has more than 127 characters, or it is none of
 * the ten and no plug-in has it. Or, for the internal scanner and the camera: the code of the
 * device has no type.
 * @retval PAL_CAPABILITY_INSTALLED      The capability is installed.
 * @retval PAL_CAPABILITY_NOT_INSTALLED  The capability is not installed.
 * @retval PAL_CAPABILITY_ERROR  @p name is null; or the name is none of the ten and there was no
 *                       memory to look for a plug-in; or the function in the table says so.
 */
DWORD PALAPI PALDevCap_GetDevCapsA(const char* name);
/** Tells whether a capability is installed, for a name in UTF-16. @like PALDevCap_GetDevCapsA */
DWORD PALAPI PALDevCap_GetDevCapsW(const WCHAR* name);

/**
 * Tells whether a capability is enabled. Plug-ins are not asked.
 *
 * | capability      | the answer                                                                |
 * |-----------------|---------------------------------------------------------------------------|
 * | Camera          | disabled if it is not installed; else enabled or disabled, as             |
 * |                 | PALMFGOpt_IsCameraEnabled says                                            |
 * | Wifi            | not determined                                                            |
 * | Bluetooth       | not installed or error, as PalSysinfo_IsBluetoothInstalled says; else     |
 * |                 | enabled if the radio is on, disabled if it is off, error if its mode      |
 * |                 | cannot be read                                                            |
 * | InternalScanner | enabled if it is installed, else disabled                                 |
 * | Vibrate         | enabled, or not installed if PALVIBIsInstalled fails                      |
 * | WWAN            | disabled if it is not installed; else by the REG_DWORD                    |
 * |                 | "LastEquipmentState" under HKEY_LOCAL_MACHINE "Software\Microsoft\RIL":   |
 * |                 | enabled for 2, disabled for 1, error if it cannot be read                 |
 * | GPS             | the same as WWAN                                                          |
 * | Compass         | not determined                                                            |
 * | Accelerometer   | enabled, or not installed if its driver cannot be opened                  |
 * | Pedometer       | disabled                                                                  |
 *
 * @param name  The name of the capability, as null-terminated text: 8-bit in the A form, UTF-16 in
 *              the W form. No capability has a name of more than 127 characters.
 *
 * @retval PAL_CAPABILITY_NOT_DETERMINED  @p name is null or none of the ten, or the table says so.
 * @retval PAL_CAPABILITY_NOT_INSTALLED   The table says so.
 * @retval PAL_CAPABILITY_ERROR           The table says so.
 * @retval PAL_CAPABILITY_DISABLED        The table says so.
 * @retval PAL_CAPABILITY_ENABLED         The table says so.
 * @return For WWAN and GPS also any other number that "LastEquipmentState" holds.
 */
DWORD PALAPI PALDevCap_EnabledA(const char* name);
/** Tells whether a capability is enabled, for a name in UTF-16. @like PALDevCap_EnabledA */
DWORD PALAPI PALDevCap_EnabledW(const WCHAR* name);

/**
 * Tells whether the Bluetooth module is fitted, by its file "\ConfigStore\BMN0".
 *
 * @retval PAL_CAPABILITY_INSTALLED      The file can be read, whatever it holds.
 * @retval PAL_CAPABILITY_NOT_INSTALLED  The file does not exist, or cannot be opened or read.
 * @retval PAL_CAPABILITY_ERROR          The platform gave the handle 0 for the file.
 */
DWORD PALAPI PalSysinfo_IsBluetoothInstalled(void);

/**
 * Tells whether there is a scan engine inside, by PALMFGOpt_InternalDeviceType.
 *
 * @retval PAL_CAPABILITY_NOT_DETERMINED  The type is PAL_DEVICE_TYPE_UNKNOWN.
 * @retval PAL_CAPABILITY_INSTALLED       The type is any other.
 * @retval PAL_CAPABILITY_NOT_INSTALLED   The type is PAL_DEVICE_TYPE_NONE.
 * @retval PAL_CAPABILITY_ERROR           PALMFGOpt_InternalDeviceType failed.
 */
DWORD PALAPI PalSysinfo_IsIntScannerInstalled(void);

/**
 * Tells whether there is a camera, by PALMFGOpt_InternalDevice2Type.
 *
 * @retval PAL_CAPABILITY_ERROR  PALMFGOpt_InternalDevice2Type failed: the file
 *                     "\ConfigStore\datacoll" does not exist, is empty or cannot be read.
 * @like PalSysinfo_IsIntScannerInstalled
 */
DWORD PALAPI PalSysinfo_IsCameraInstalled(void);

/**
 * Tells whether there is a modem for wireless wide-area networks, by its library.
 *
 * @retval PAL_CAPABILITY_INSTALLED      The file "\Windows\ril.dll" exists.
 * @retval PAL_CAPABILITY_NOT_INSTALLED  It does not.
 */
DWORD PALAPI PalSysinfo_IsWwanInstalled(void);

/**
 * Tells whether there is an accelerometer, by its driver "ISL0:".
 *
 * @retval PAL_CAPABILITY_INSTALLED      The driver can be opened.
 * @retval PAL_CAPABILITY_NOT_INSTALLED  It cannot.
 */
DWORD PALAPI PalSysinfo_IsAccelInstalled(void);

/**
 * Tells whether there is a compass. No device of the family has one.
 * @retval PAL_CAPABILITY_NOT_INSTALLED  Always.
 */
DWORD PALAPI PalSysinfo_IsCompassInstalled(void);
/** Tells whether there is a pedometer. No device has one. @like PalSysinfo_IsCompassInstalled */
DWORD PALAPI PalSysinfo_IsPedometerInstalled(void);

/**
 * Tells whether there is a GPS receiver, which is a part of the modem.
 * @like PalSysinfo_IsWwanInstalled
 */
DWORD PALAPI PalSysinfo_IsGpsInstalled(void);

PAL_INTERFACE_END

#endif /* PALDEVCAP_H_ */
