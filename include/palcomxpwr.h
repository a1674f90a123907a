/**
 * @file palcomxpwr.h
 * @brief Power of the COM ports.
 *
 * This interface switches nothing and always answers 0 for a port's power. It stands here so that
 * programs written for other platforms link and run: no function touches a driver or the registry.
 * All may be called from any thread of any process. Setting and getting are traced with facility
 * 1102.
 */
#ifndef PALCOMXPWR_H_
#define PALCOMXPWR_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Does nothing; the calls need no preparation.
 * @retval S_OK always
 */
HRESULT PALAPI PALCOMxPwr_Init(void);

/**
 * Does nothing; nothing is held.
 * @retval S_OK always
 */
HRESULT PALAPI PALCOMxPwr_Term(void);

/** The power of one port. */
typedef struct PALComPortPower {
  /** Not 0: powered. */
  DWORD enable;
  /** The caller's number for the port. */
  DWORD port_id;
} PALComPortPower;

/**
 * Changes nothing, and traces the request.
 *
 * @param port   The port's name, such as "COM1:", as null-terminated UTF-16. It is traced alone;
 *               null is traced as "(null)".
 * @param power  What was wished; both fields are traced. Not null.
 *
 * @retval S_OK   always with a @p power that is not null
 * @retval E_FAIL @p power is null; nothing is traced
 */
HRESULT PALAPI PALCOMxPwr_SetPower(const WCHAR* port, const PALComPortPower* power);

/**
 * Answers 0 for a port's power, whichever port it is, and traces the question.
 *
 * @param port           The port's name, such as "COM1:", as null-terminated UTF-16. It is traced
 *                       alone; null is traced as "(null)".
 * @param[in,out] power  Out: `enable` is 0; `port_id` stays and is traced. Not null.
 *
 * @retval S_OK   always with a @p power that is not null
 * @retval E_FAIL @p power is null; nothing is traced
 */
HRESULT PALAPI PALCOMxPwr_GetPower(const WCHAR* port, PALComPortPower* power);

PAL_INTERFACE_END

#endif /* PALCOMXPWR_H_ */
