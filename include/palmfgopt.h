/**
 * @file palmfgopt.h
 * @brief Manufacturing options and the configuration store.
 *
 * Manufacturing options say how the device was built and what its owner allows. They stand in
 * non-volatile parameters, in the files "\ConfigStore\datacoll" and "\ConfigStore\DCEDPM", and in
 * the policies under HKEY_LOCAL_MACHINE "Software\Dravonel\Policy". Nothing is kept between calls:
 * each reads its source again.
 *
 * The configuration store is a binary file, "\ConfigStore\dcecfg", that is written at the factory
 * or during provisioning and seeds the registry of the data-collection stack.
 *
 * The functions here may be called from any thread of any process. They take no lock: the files are
 * opened without sharing, so of two callers at once one may get PAL_E_SHARING_VIOLATION (sharing
 * violation), and provisioning runs one process at a time.
 *
 * A null out-pointer gives E_FAIL, and nothing is read, written or traced. The steps of every
 * function are traced with facility 1008.
 */
#ifndef PALMFGOPT_H_
#define PALMFGOPT_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Writes the settings of the configuration store "\ConfigStore\dcecfg" to the registry.
 *
 * Every key entry of the file becomes one registry value, in file order; its key is created where
 * it does not exist. A file that is missing, cannot be read, holds 1024 bytes or more, or ends
 * early in a DSCP section changes nothing. Each step and every fault of the file is traced with
 * facility 1008.
 *
 * @retval S_OK always: the outcome of the update is found in the trace.
 */
HRESULT PALAPI PALMFGOpt_ConfigStoreRegUpdate(void);

/**
 * Which scan engine is fitted inside the device.
 *
 * The low 7 bits of the non-volatile parameter 0x1A are a code, which stands for a type. The type
 * is the row of the engine in the table of device names that the configuration store uses.
 *
 * @param[out] type          0 to 56; 254 where the code stands for no type; 255 where there is no
 *                           engine; 34 (ENG17) where the parameter cannot be read. Not null.
 * @param[out] s6_installed  Always 0. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  @p type or @p s6_installed is null; neither is written
 */
HRESULT PALAPI PALMFGOpt_InternalDeviceType(DWORD* type, DWORD* s6_installed);

/**
 * Which second internal device is fitted, a camera for example.
 *
 * Byte 2 of "\ConfigStore\datacoll" is a code as in PALMFGOpt_InternalDeviceType. Of the file at
 * most 1024 bytes are read.
 *
 * @param[out] type  0 to 56; 254 where the code stands for no type; 255 where there is no second
 *                   device, where the file has fewer than 3 bytes, and on every failure but that of
 *                   a null pointer. Not null.
 *
 * @retval S_OK        answered
 * @retval E_FAIL      the file is empty, or @p type is null
 * @retval PAL_E_WIN32(error)  the error of opening or reading the file: PAL_E_FILE_NOT_FOUND where
 * there is none
 */
HRESULT PALAPI PALMFGOpt_InternalDevice2Type(DWORD* type);

/**
 * How the imager of the internal device is oriented: byte 4 of "\ConfigStore\datacoll" as it is.
 *
 * @param[out] orientation  0 to 255; 0 where the file has fewer than 5 bytes, and on every failure
 *                          but that of a null pointer. Not null.
 *
 * @retval S_OK        answered
 * @retval E_FAIL      the file is empty, or @p orientation is null
 * @retval PAL_E_WIN32(error)  the error of opening or reading the file: PAL_E_FILE_NOT_FOUND where
 * there is none
 */
HRESULT PALAPI PALMFGOpt_InternalDevice_ImageOrientation(DWORD* orientation);

/**
 * How the second internal device is mounted: byte 5 of "\ConfigStore\datacoll" as it is.
 *
 * @param[out] rotation  0 to 255; 0 where the file has fewer than 6 bytes, and on every failure but
 *                       that of a null pointer. Not null.
 *
 * @retval S_OK        answered
 * @retval E_FAIL      the file is empty, or @p rotation is null
 * @retval PAL_E_WIN32(error)  the error of opening or reading the file: PAL_E_FILE_NOT_FOUND where
 * there is none
 */
HRESULT PALAPI PALMFGOpt_InternalDevice2_MountingRotation(DWORD* rotation);

/**
 * Whether images may be captured.
 *
 * They may not where the non-volatile parameter 0xD7 (the AIT bit) is not 0, or where the DWORD
 * "DisableImageCapture" under HKEY_LOCAL_MACHINE "Software\Dravonel\Policy" is not 0. A parameter
 * or a value that cannot be read forbids nothing; the parameter's failure is told on the debug
 * output.
 *
 * @param[out] enabled  1 or 0. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  @p enabled is null
 */
HRESULT PALAPI PALMFGOpt_IsCameraEnabled(DWORD* enabled);

/**
 * Whether the maker's content is enabled. It is on every device.
 *
 * @param[out] enabled  Always 1. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  @p enabled is null
 */
HRESULT PALAPI PALMFGOpt_IsDravonelContentEnabled(DWORD* enabled);

/**
 * Whether the content for data collection is enabled: the non-volatile parameter 0x1B is not 0.
 *
 * @param[out] enabled  1 or 0; 1 where the parameter cannot be read. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  the parameter cannot be read, or @p enabled is null
 */
HRESULT PALAPI PALMFGOpt_IsDataCollectionContentEnabled(DWORD* enabled);

/**
 * Whether the Bluetooth module may be used: it counts as installed unless the policy of the feature
 * "Bluetooth" (PALMFGOpt_IsDisabledByPolicy) says that it is disabled.
 *
 * @param[out] installed  1 or 0; 1 where the policy cannot be read. Not null.
 *
 * @retval S_OK    answered
 * @retval E_FAIL  @p installed is null
 */
HRESULT PALAPI PALMFGOpt_IsBluetoothModuleInstalled(DWORD* installed);

/**
 * Whether the owner has switched a feature off.
 *
 * The feature has a key of its own below HKEY_LOCAL_MACHINE "Software\Dravonel\Policy". There the
 * text "PolicyLocation" is the path of another key under HKEY_LOCAL_MACHINE, and the text
 * "PolicyKey" the name of a DWORD in that other key: 0 enabled, 1 disabled. Texts are of type
 * REG_SZ and have at most 260 units; an empty one counts as one that cannot be read.
 *
 * @param feature  The name of the feature, for example "Bluetooth", as null-terminated UTF-16. The
 *                 path of its key has at most 259 units.
 *
 * @retval PAL_MFGOPT_S_ENABLED  enabled; also where the key that "PolicyLocation" names does not
 * exist
 * @retval PAL_MFGOPT_S_DISABLED  disabled
 * @retval PAL_MFGOPT_E_VALUE_UNREADABLE  "PolicyKey", or the DWORD that it names, cannot be read
 * @retval PAL_MFGOPT_E_LOCATION_UNREADABLE  "PolicyLocation" cannot be read
 * @retval PAL_MFGOPT_E_NO_SUCH_FEATURE  the feature has no key, its key cannot be opened, or @p
 * feature is too long
 * @retval PAL_MFGOPT_E_VALUE_INVALID  the DWORD is neither 0 nor 1
 * @retval PAL_MFGOPT_E_NO_FEATURE_GIVEN  @p feature is null
 */
HRESULT PALAPI PALMFGOpt_IsDisabledByPolicy(const WCHAR* feature);

/**
 * Keeps a status for a scan type in the file "\ConfigStore\DCEDPM".
 *
 * The file has two bytes: byte 1 is the status of scan type 4, byte 0 that of all other scan types.
 * It is created with two zeros where it does not exist. A failure may leave it so created.
 *
 * @param scan_type  Any number; 4 has a status of its own.
 * @param status     Its low 8 bits are kept.
 *
 * @retval S_OK        written
 * @retval E_FAIL      nothing was written though the write did not fail
 * @retval PAL_E_WIN32(error)  the error of opening, creating, positioning or writing the file:
 * PAL_E_PATH_NOT_FOUND where there is no folder "\ConfigStore", PAL_E_SHARING_VIOLATION where the
 * file is in use
 */
HRESULT PALAPI PALMFGOpt_SetDPMStatus(DWORD scan_type, DWORD status);

/**
 * The status that PALMFGOpt_SetDPMStatus has kept for a scan type.
 *
 * "\ConfigStore\DCEDPM" is created with two zeros where it does not exist.
 *
 * @param scan_type    Any number; 4 has a status of its own.
 * @param[out] status  0 to 255; 0 where the file ends before it, and on every failure but that of a
 *                     null pointer. Not null.
 *
 * @retval S_OK        answered
 * @retval E_FAIL      @p status is null; the file is then not created
 * @retval PAL_E_WIN32(error)  the error of opening, creating, positioning or reading the file:
 * PAL_E_PATH_NOT_FOUND where there is no folder "\ConfigStore", PAL_E_SHARING_VIOLATION where the
 * file is in use
 */
HRESULT PALAPI PALMFGOpt_GetDPMStatus(DWORD scan_type, DWORD* status);

/**
 * Makes the registry, which lives in memory, survive a cold boot.
 *
 * Where a service that owns the flush is running, which the existence of the named event
 * "DVLRegFlushKeyAll" tells, the event is set and the service does the rest in its own time.
 * Otherwise HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT and HKEY_USERS are flushed in
 * this order before the call returns; a root that fails does not keep the next one from it. Each
 * step and every failure is traced with facility 1008.
 *
 * @retval S_OK   the service was signalled, or all four roots were flushed
 * @retval E_FAIL the event could neither be created nor opened; or the service's event could not be
 *                set (nothing was flushed); or at least one root could not be flushed
 */
HRESULT PALAPI PALMFGOpt_PersistRegistry(void);

/**
 * A placeholder: restoring the factory's settings is not supported.
 *
 * Changes nothing, and traces one line with facility 1008.
 *
 * @retval E_FAIL always
 */
HRESULT PALAPI PALMFGOpt_RestoreDefaults(void);

/**
 * A placeholder: configuration strings are not supported on this family.
 *
 * Programs built against other headers pass further arguments behind the selector. They are not
 * read and nothing is written to them; the device's calling convention makes them harmless.
 *
 * @param selector which string; 1 is traced as a warning with facility 1008, others are not
 * @retval E_FAIL always
 */
HRESULT PALAPI PALMFGOpt_GetConfigString(DWORD selector);

PAL_INTERFACE_END

#endif /* PALMFGOPT_H_ */
