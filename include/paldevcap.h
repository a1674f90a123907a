/**
 * @file paldevcap.h
 * @brief Which optional capabilities the device has, and whether they are enabled.
 *
 * There are ten capabilities with a name: "Camera", "Wifi", "Bluetooth", "InternalScanner",
 * "Vibrate", "WWAN", "GPS", "Compass", "Accelerometer" and "Pedometer", in whatever case. The
 * answers are a PALCapabilityState and no HRESULT. They come from the manufacturing options
 * (palmfgopt.h), from drivers, files and network interfaces, and each call asks anew.
 *
 * A plug-in can supply a capability, also one without a row here: a REG_DWORD with the capability's
 * name under HKEY_LOCAL_MACHINE "Software\Dravonel\PAL\DeviceCapabilities", not 0 for installed.
 *
 * The functions here may be called from any thread of any process. They take no lock; files and
 * drivers are opened without sharing, so that of two callers at once one may be told that the
 * other's file or driver is not there. Steps and failures are traced with facility 1039.
 */
#ifndef PALDEVCAP_H_
#define PALDEVCAP_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

typedef enum PALCapabilityState {
  PAL_CAPABILITY_NOT_DETERMINED = 0,
  PAL_CAPABILITY_INSTALLED = 1,
  PAL_CAPABILITY_NOT_INSTALLED = 2,
  PAL_CAPABILITY_ERROR = 3, /* while asking */
  /** Also the answer of some capabilities that are not there. */
  PAL_CAPABILITY_DISABLED = 4,
  PAL_CAPABILITY_ENABLED = 5
} PALCapabilityState;

/**
 * Tells whether a capability is installed.
 *
 * What a plug-in says holds before what the device says:
 *
 * | capability      | answers                                                                     |
 * |-----------------|-----------------------------------------------------------------------------|
 * | Camera          | as PalSysinfo_IsCameraInstalled                                             |
 * | Wifi            | 1, 2 or 3 as the network interfaces tell, see below                         |
 * | Bluetooth       | as PalSysinfo_IsBluetoothInstalled                                          |
 * | InternalScanner | as PalSysinfo_IsIntScannerInstalled                                         |
 * | Vibrate         | 1, or 2 where PALVIBIsInstalled fails                                       |
 * | WWAN            | as PalSysinfo_IsWwanInstalled                                               |
 * | GPS             | as PalSysinfo_IsGpsInstalled                                                |
 * | Compass         | as PalSysinfo_IsCompassInstalled                                            |
 * | Accelerometer   | as PalSysinfo_IsAccelInstalled                                              |
 * | Pedometer       | as PalSysinfo_IsPedometerInstalled                                          |
 *
 * Wifi is installed where an interface of type 6 is described as "AR6K_SD1" or "TIWLN1", in
 * whatever case; those with the indexes from 0 to their count are asked for, but none above 256.
 * 3 where GetNumberOfInterfaces fails, or counts more than 256 and none that was asked for is it.
 *
 * @param name  The capability's name, 8-bit text, with a terminator. No capability has
 *              a name of more than 127 characters.
 *
 * @retval 0  the name is too long, or it is none of the ten and no plug-in knows it, or, for the
 *            internal scanner and the camera, the device's code stands for no type
 * @retval 1  installed
 * @retval 2  not installed
 * @retval 3  the question failed: @p name is null, there was no memory for a name that is none of
 *            the ten, or the capability's answer in the table
 */
DWORD PALAPI PALDevCap_GetDevCapsA(const char* name);
/** As PALDevCap_GetDevCapsA, in UTF-16. */
DWORD PALAPI PALDevCap_GetDevCapsW(const WCHAR* name);

/**
 * Tells whether a capability is enabled. What plug-ins say is not asked for.
 *
 * | capability      | answers                                                                     |
 * |-----------------|-----------------------------------------------------------------------------|
 * | Camera          | 4 where it is not installed, else 5 or 4 as PALMFGOpt_IsCameraEnabled says  |
 * | Wifi            | 0                                                                           |
 * | Bluetooth       | 2 or 3 as PalSysinfo_IsBluetoothInstalled; 5 where the radio is on, 4 where |
 * |                 | it is off, 3 where its mode cannot be asked for                             |
 * | InternalScanner | 5 where it is installed, else 4                                             |
 * | Vibrate         | 5, or 2 where PALVIBIsInstalled fails                                       |
 * | WWAN            | 4 where it is not installed; else from the REG_DWORD "LastEquipmentState"   |
 * |                 | under HKEY_LOCAL_MACHINE "Software\Microsoft\RIL": 5 for 2, 4 for 1, any    |
 * |                 | other number as it is, 3 where it cannot be read                            |
 * | GPS             | as WWAN                                                                     |
 * | Compass         | 0                                                                           |
 * | Accelerometer   | 5, or 2 where its driver cannot be opened                                   |
 * | Pedometer       | 4                                                                           |
 *
 * @param name  The capability's name, 8-bit text, with a terminator. No capability has
 *              a name of more than 127 characters.
 *
 * @retval 0     the name is none of the ten or null, or the capability's answer
 * @retval 2     the capability's answer: not installed
 * @retval 3     the capability's answer: the question failed
 * @retval 4     the capability's answer: disabled
 * @retval 5     the capability's answer: enabled
 * @return Of WWAN and GPS also any other number that "LastEquipmentState" holds.
 */
DWORD PALAPI PALDevCap_EnabledA(const char* name);
/** As PALDevCap_EnabledA, in UTF-16. */
DWORD PALAPI PALDevCap_EnabledW(const WCHAR* name);

/**
 * Tells whether the Bluetooth module is fitted, which its file "\ConfigStore\BMN0" tells.
 *
 * @retval 1  the file can be read, whatever it holds
 * @retval 2  it is not there, or cannot be opened or read
 * @retval 3  the open gave no handle at all
 */
DWORD PALAPI PalSysinfo_IsBluetoothInstalled(void);

/**
 * Tells whether there is a scan engine inside, by PALMFGOpt_InternalDeviceType.
 *
 * @retval 0  type 254: the device's code stands for no type
 * @retval 1  any other type
 * @retval 2  type 255: there is none
 * @retval 3  PALMFGOpt_InternalDeviceType failed
 */
DWORD PALAPI PalSysinfo_IsIntScannerInstalled(void);

/**
 * Tells whether there is a camera, by PALMFGOpt_InternalDevice2Type.
 *
 * @retval 0  type 254: the device's code stands for no type
 * @retval 1  any other type
 * @retval 2  type 255: there is none
 * @retval 3  PALMFGOpt_InternalDevice2Type failed: the file "\ConfigStore\datacoll" is missing,
 *            empty or cannot be read
 */
DWORD PALAPI PalSysinfo_IsCameraInstalled(void);

/**
 * Tells whether there is a modem for wireless wide-area networks, by its library.
 *
 * @retval 1  there is "\Windows\ril.dll"
 * @retval 2  there is not
 */
DWORD PALAPI PalSysinfo_IsWwanInstalled(void);

/**
 * Tells whether there is an accelerometer, by its driver "ISL0:".
 *
 * @retval 1  the driver can be opened
 * @retval 2  it cannot
 */
DWORD PALAPI PalSysinfo_IsAccelInstalled(void);

/**
 * Tells whether there is a compass. No device of the family has one.
 * @retval 2  always
 */
DWORD PALAPI PalSysinfo_IsCompassInstalled(void);

/**
 * Tells whether there is a pedometer. No device of the family has one.
 * @retval 2  always
 */
DWORD PALAPI PalSysinfo_IsPedometerInstalled(void);

/**
 * Tells whether there is a GPS receiver: it comes with the modem.
 * @retval 1  there is a modem, as PalSysinfo_IsWwanInstalled tells
 * @retval 2  there is none
 */
DWORD PALAPI PalSysinfo_IsGpsInstalled(void);

PAL_INTERFACE_END

#endif /* PALDEVCAP_H_ */
