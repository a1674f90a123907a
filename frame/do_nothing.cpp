#include "frame/do_nothing.h"

HRESULT PALAPI PALDoNothing() {
  return S_OK;
}
