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
 * Tells whether the data-collection content may be used: the flags of non-volatile parameter 0x1B,
 * read anew at every call.
 *
 * @param enabled  Receives 1 where any flag is set, 0 where none is. Not null. Where the parameter
 *                 cannot be read it is 1.
 * @retval S_OK    Answered.
 * @retval E_FAIL  The parameter cannot be read, or @p enabled is null.
 */
HRESULT PALAPI PALMFGOpt_IsDataCollectionContentEnabled(DWORD* enabled);

PAL_INTERFACE_END

#endif /* PALMFGOPT_H_ */
