/**
 * @file palver.h
 * @brief The library itself: its version, and its registration.
 * @family frame
 *
 * Any thread of any process may call these functions. Nothing is kept between calls.
 */
#ifndef PALVER_H_
#define PALVER_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Writes the version of the library, "0.0.0.0", to the event log, with facility 1071. A library
 * that forwards services to this one calls it, so that the log tells which library was loaded.
 *
 * @retval S_OK  Always, also without an event log.
 */
HRESULT PALAPI PALVER_LogVersion(void);

/**
 * Does nothing: there is nothing to register. For installers that call it for every library.
 * @retval S_OK  Always.
 */
HRESULT PALAPI DllRegisterServer(void);

/** Does nothing: there is nothing to unregister. @retval S_OK  Always. */
HRESULT PALAPI DllUnregisterServer(void);

PAL_INTERFACE_END

#endif /* PALVER_H_ */
