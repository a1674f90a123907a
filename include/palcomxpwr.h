/**
 * @file palcomxpwr.h
 * @brief COM ports: their power.
 * @family switches
 *
 * These functions switch nothing and always answer 0 for the power of a port. Programs that were
 * written for other platforms need them to link and run. No function uses a driver or the registry.
 * Any thread of any process may call them. Setting and getting are traced with facility 1102.
 */
#ifndef PALCOMXPWR_H_
#define PALCOMXPWR_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** Does nothing: there is nothing to prepare. @retval S_OK  Always. */
HRESULT PALAPI PALCOMxPwr_Init(void);

/** Does nothing: there is nothing to release. @retval S_OK  Always. */
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
 * @param port   The name of the port, such as "COM1:", as null-terminated UTF-16. It is only
 *               traced; null is traced as "(null)".
 * @param power  The power that is wanted. Both fields are traced. Not null.
 *
 * @retval S_OK    @p power is not null.
 * @retval E_FAIL  @p power is null. Nothing is traced.
 */
HRESULT PALAPI PALCOMxPwr_SetPower(const WCHAR* port, const PALComPortPower* power);

/**
 * Answers 0 for the power of a port, and traces the question.
 *
 * @param[in,out] power  `enable` becomes 0. `port_id` is traced and not changed. Not null.
 * @like PALCOMxPwr_SetPower
 */
HRESULT PALAPI PALCOMxPwr_GetPower(const WCHAR* port, PALComPortPower* power);

PAL_INTERFACE_END

#endif /* PALCOMXPWR_H_ */
