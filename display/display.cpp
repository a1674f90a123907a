// The display family's start and end: it holds nothing between calls.
#include "include/paldisp.h"

HRESULT PALAPI PALDISPInit() {
  return S_OK;
}

HRESULT PALAPI PALDISPTerm() {
  return S_OK;
}
