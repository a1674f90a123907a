/**
 * @file palmfgopt.h
 * @brief Manufacturing options, the configuration store, and keeping the registry.
 * @family sysinfo/options
 *
 * Manufacturing options say how the device was built and what its owner allows. They are found in
 * non-volatile parameters, in the files "\ConfigStore\datacoll" and "\ConfigStore\DCEDPM", and in
 * the policies under HKEY_LOCAL_MACHINE "Software\Dravonel\Policy". Every call reads its source
 * again.
 *
 * The configuration store is the binary file "\ConfigStore\dcecfg". It is written at the factory or
 * during provisioning, and holds registry values for the data-collection stack.
 *
 * Any thread of any process may call these functions. They take no lock. Files are opened without
 * sharing: of two callers at once one can get PAL_E_SHARING_VIOLATION. Run provisioning in one
 * process at a time. For a null out-pointer the result is E_FAIL, and nothing is read, written or
 * traced. The steps of every function are traced with facility 1008.
 */
#ifndef PALMFGOPT_H_
#define PALMFGOPT_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Types of internal devices that callers compare with. The other types, from 0 to 56, are the rows
 * of the device names of the configuration store.
 */
typedef enum PALInternalDeviceType {
  /** The scan engine ENG17. */
  PAL_DEVICE_TYPE_ENG17 = 34,
  /** The scan engine ENG14. */
  PAL_DEVICE_TYPE_ENG14 = 37,
  /** The scan engine ENG13. */
  PAL_DEVICE_TYPE_ENG13 = 38,
  /** The device has a code that belongs to no type. */
  PAL_DEVICE_TYPE_UNKNOWN = 254,
  /** There is no such device. */
  PAL_DEVICE_TYPE_NONE = 255
} PALInternalDeviceType;

/**
 * Writes the settings of the configuration store "\ConfigStore\dcecfg" to the registry.
 *
 * Each entry of the file becomes one registry value, in the order of the file. A key that does not
 * exist is created. These entries become no value: one with an index, a frame or a format that does
 * not exist; one whose text is too long or has no end; a literal one whose path is only the name of
 * a root; and those after the 256th value. Nothing is written if the file does not exist, cannot be
 * read, holds 1024 bytes or more, or ends inside a DSCP section. Every step and every fault of the
 * file is traced.
 *
 * @family configstore
 * @retval S_OK  Always. The trace tells what happened.
 */
HRESULT PALAPI PALMFGOpt_ConfigStoreRegUpdate(void);

/**
 * Tells which scan engine is fitted inside the device. The low 7 bits of the non-volatile parameter
 * 0x1A are a code, and each known code stands for a type.
 *
 * @param[out] type          #PALInternalDeviceType, or another number from 0 to 56.
 *                           PAL_DEVICE_TYPE_ENG17 if the parameter cannot be read. Not null.
 * @param[out] s6_installed  Always 0. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p type or @p s6_installed is null. Neither is written.
 */
HRESULT PALAPI PALMFGOpt_InternalDeviceType(DWORD* type, DWORD* s6_installed);

/**
 * Tells which second internal device is fitted, for example a camera. Byte 2 of
 * "\ConfigStore\datacoll" is a code as in PALMFGOpt_InternalDeviceType. At most 1024 bytes of the
 * file are read.
 *
 * @param[out] type  #PALInternalDeviceType, or another number from 0 to 56. PAL_DEVICE_TYPE_NONE
 *                   also if the file has fewer than 3 bytes, and on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  The file is empty, or the out-pointer is null.
 * @retval PAL_E_WIN32(error)  The error of opening or reading the file: PAL_E_FILE_NOT_FOUND if it
 *                 does not exist.
 */
HRESULT PALAPI PALMFGOpt_InternalDevice2Type(DWORD* type);

/**
 * Tells the orientation of the imager in the internal device: byte 4 of "\ConfigStore\datacoll".
 *
 * @param[out] orientation  The byte as it is. 0 if the file has fewer than 5 bytes, and on failure.
 *                          Not null.
 * @like PALMFGOpt_InternalDevice2Type
 */
HRESULT PALAPI PALMFGOpt_InternalDevice_ImageOrientation(DWORD* orientation);

/**
 * Tells how the second internal device is mounted: byte 5 of "\ConfigStore\datacoll".
 *
 * @param[out] rotation  The byte as it is. 0 if the file has fewer than 6 bytes, and on failure.
 *                       Not null.
 * @like PALMFGOpt_InternalDevice2Type
 */
HRESULT PALAPI PALMFGOpt_InternalDevice2_MountingRotation(DWORD* rotation);

/**
 * Tells whether images may be captured.
 *
 * They may not if the non-volatile parameter 0xD7 (the AIT bit) is not 0, or if the DWORD
 * "DisableImageCapture" under HKEY_LOCAL_MACHINE "Software\Dravonel\Policy" is not 0. A parameter
 * or value that cannot be read forbids nothing. A failure of the parameter is written to the debug
 * output.
 *
 * @param[out] enabled  1 or 0. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  The out-pointer is null.
 */
HRESULT PALAPI PALMFGOpt_IsCameraEnabled(DWORD* enabled);

/**
 * Tells whether the maker's content is enabled. It is on every device.
 *
 * @param[out] enabled  Always 1. Not null.
 * @like PALMFGOpt_IsCameraEnabled
 */
HRESULT PALAPI PALMFGOpt_IsDravonelContentEnabled(DWORD* enabled);

/**
 * Tells whether the content for data collection is enabled: the non-volatile parameter 0x1B is not
 * 0.
 *
 * @param[out] enabled  1 or 0. 1 if the parameter cannot be read. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  The parameter cannot be read, or @p enabled is null.
 */
HRESULT PALAPI PALMFGOpt_IsDataCollectionContentEnabled(DWORD* enabled);

/**
 * Tells whether the Bluetooth module may be used. It counts as installed unless
 * PALMFGOpt_IsDisabledByPolicy says that the feature "Bluetooth" is disabled.
 *
 * @param[out] installed  1 or 0. 1 if the policy cannot be read. Not null.
 * @like PALMFGOpt_IsCameraEnabled
 */
HRESULT PALAPI PALMFGOpt_IsBluetoothModuleInstalled(DWORD* installed);

/**
 * Tells whether the owner of the device has switched a feature off.
 *
 * The feature has a key of its own below HKEY_LOCAL_MACHINE "Software\Dravonel\Policy", with two
 * texts. "PolicyLocation" is the path of another key under HKEY_LOCAL_MACHINE. "PolicyKey" is the
 * name of a DWORD in that other key: 0 for enabled, 1 for disabled. A text must be of type REG_SZ
 * and have at most 260 units. An empty text counts as one that cannot be read.
 *
 * @param feature  The name of the feature, for example "Bluetooth", as null-terminated UTF-16. The
 *                 path of its key has at most 259 units.
 *
 * @retval PAL_MFGOPT_S_ENABLED   Enabled. Also if the key that "PolicyLocation" names cannot be
 *                 opened, for whatever reason.
 * @retval PAL_MFGOPT_S_DISABLED  Disabled.
 * @retval PAL_MFGOPT_E_VALUE_UNREADABLE     "PolicyKey", or the DWORD that it names, cannot be
 *                 read.
 * @retval PAL_MFGOPT_E_LOCATION_UNREADABLE  "PolicyLocation" cannot be read.
 * @retval PAL_MFGOPT_E_NO_SUCH_FEATURE      The feature has no key, or its key cannot be opened, or
 *                 @p feature is too long.
 * @retval PAL_MFGOPT_E_VALUE_INVALID        The DWORD is neither 0 nor 1.
 * @retval PAL_MFGOPT_E_NO_FEATURE_GIVEN     @p feature is null.
 */
HRESULT PALAPI PALMFGOpt_IsDisabledByPolicy(const WCHAR* feature);

/**
 * Keeps a status for a scan type in the file "\ConfigStore\DCEDPM".
 *
 * Byte 1 of the file is the status of scan type 4. Byte 0 is the status of all other scan types. A
 * file that does not exist is created with two zeros. If these cannot be written, the call fails
 * and the empty file stays; if only one of them is written, the call goes on. A file with fewer
 * than two bytes is used as it is and not filled up: only the status that is set is written.
 *
 * @param scan_type  Any number. 4 has a status of its own.
 * @param status     Its low 8 bits are kept.
 *
 * @retval S_OK    Written.
 * @retval E_FAIL  The platform reported success but wrote no byte.
 * @retval PAL_E_WIN32(error)  The error of opening, creating, positioning, reading or writing the
 *                 file: PAL_E_PATH_NOT_FOUND if there is no folder "\ConfigStore",
 *                 PAL_E_SHARING_VIOLATION if the file is in use.
 */
HRESULT PALAPI PALMFGOpt_SetDPMStatus(DWORD scan_type, DWORD status);

/**
 * Gives the status that PALMFGOpt_SetDPMStatus has kept for a scan type. A file that does not exist
 * is created as there.
 *
 * @param[out] status  0 to 255. 0 if the file ends before this status, and on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p status is null. The file is then not created.
 * @like PALMFGOpt_SetDPMStatus
 */
HRESULT PALAPI PALMFGOpt_GetDPMStatus(DWORD scan_type, DWORD* status);

/**
 * Makes the registry, which lives in memory, survive a cold boot.
 *
 * A service that flushes the registry holds the named event "DVLRegFlushKeyAll". If the event
 * exists, it is set, and the service flushes in its own time. Otherwise the call flushes
 * HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT and HKEY_USERS, in this order. If one
 * root fails, the next is flushed all the same. During the call this function holds the event too:
 * a second caller at that time takes it for the service, sets it and returns S_OK before the first
 * has flushed.
 *
 * @family configstore
 * @retval S_OK    The service was told, or all four roots were flushed.
 * @retval E_FAIL  The event could neither be created nor opened. Or the event of the service could
 *                 not be set; nothing was flushed. Or a root could not be flushed.
 */
HRESULT PALAPI PALMFGOpt_PersistRegistry(void);

/**
 * A placeholder: these devices cannot restore the settings of the factory. Changes nothing, and
 * traces one line.
 *
 * @family configstore
 * @retval E_FAIL  Always.
 */
HRESULT PALAPI PALMFGOpt_RestoreDefaults(void);

/**
 * A placeholder: these devices have no configuration strings.
 *
 * Programs that were built with other headers pass further arguments after the selector. These are
 * neither read nor written. The calling convention of the device makes them harmless.
 *
 * @family configstore
 * @param selector  Which string. 1 is traced as a warning; others are not traced.
 *
 * @retval E_FAIL  Always.
 */
HRESULT PALAPI PALMFGOpt_GetConfigString(DWORD selector);

PAL_INTERFACE_END

#endif /* PALMFGOPT_H_ */
