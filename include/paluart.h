/**
 * @file paluart.h
 * @brief UART multiplexer: the one of the serial port, which these devices do not have.
 * @family configstore
 *
 * Programs that were written for other devices need these functions to link and run. They read no
 * argument, trace nothing, and can be called from any thread of any process.
 */
#ifndef PALUART_H_
#define PALUART_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/** Gives no mode, and writes to no argument: there is no multiplexer. @retval E_NOTIMPL  Always. */
HRESULT PALAPI PALUARTGetMuxMode(void);

/** Changes nothing: there is no multiplexer. @retval E_NOTIMPL  Always. */
HRESULT PALAPI PALUARTSetMuxMode(void);

PAL_INTERFACE_END

#endif /* PALUART_H_ */
