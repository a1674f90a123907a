/**
 * @file palmfgopt.h
 * @brief Manufacturing options and the configuration store.
 *
 * The configuration store is a binary file, "\ConfigStore\dcecfg", that is written at the factory
 * or during provisioning and seeds the registry of the data-collection stack. The functions here
 * may be called from any thread of any process. They take no lock: provisioning runs one process at
 * a time.
 */
#ifndef PALMFGOPT_H_
#define PALMFGOPT_H_

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
 * Callers pass further arguments behind the selector (a buffer and its length). They are not read
 * and nothing is written to them; the device's calling convention makes them harmless.
 *
 * @param selector which string; 1 is traced as a warning with facility 1008, others are not
 * @retval E_FAIL always
 */
HRESULT PALAPI PALMFGOpt_GetConfigString(DWORD selector);

PAL_INTERFACE_END

#endif /* PALMFGOPT_H_ */
