// The multiplexer of the serial port. No device of the family has one.
#include "include/paluart.h"
#include "platform/wince.h"

HRESULT PALAPI PALUARTGetMuxMode() {
  return E_NOTIMPL;
}

HRESULT PALAPI PALUARTSetMuxMode() {
  return E_NOTIMPL;
}
