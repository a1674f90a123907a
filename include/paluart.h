/**
 * @file paluart.h
 * @brief The multiplexer of the serial port, which these devices do not have.
 *
 * Both functions are kept so that callers written for other devices still link and run. They look
 * at nothing that a caller passes, trace nothing, and may be called from any thread of any process.
 */
#ifndef PALUART_H_
#define PALUART_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Would give the mode of the multiplexer. Writes to no argument.
 * @retval E_NOTIMPL  always
 */
HRESULT PALAPI PALUARTGetMuxMode(void);

/**
 * Would set the mode of the multiplexer. Changes nothing.
 * @retval E_NOTIMPL  always
 */
HRESULT PALAPI PALUARTSetMuxMode(void);

PAL_INTERFACE_END

#endif /* PALUART_H_ */
