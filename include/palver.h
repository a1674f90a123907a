/**
 * @file palver.h
 * @brief The library itself: its version, and its registration.
 *
 * The functions here may be called from any thread of any process and keep nothing between calls.
 */
#ifndef PALVER_H_
#define PALVER_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Writes the library's version, "0.0.0.0", into the event log, with facility 1071.
 *
 * Who loads this library to pass services on calls it to have the log say which one was loaded.
 *
 * @retval S_OK  always, also where the event log is missing
 */
HRESULT PALAPI PALVER_LogVersion(void);

/**
 * Does nothing; there is nothing to register. For installers that call it for every library.
 * @retval S_OK  always
 */
HRESULT PALAPI DllRegisterServer(void);

/**
 * Does nothing, as DllRegisterServer.
 * @retval S_OK  always
 */
HRESULT PALAPI DllUnregisterServer(void);

PAL_INTERFACE_END

#endif /* PALVER_H_ */
