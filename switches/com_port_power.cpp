// The power of the COM ports. No device of the family can switch it.
#include "frame/trace.h"
#include "include/palcomxpwr.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kConfigStoreAccess};

}  // namespace
}  // namespace pal

HRESULT PALAPI PALCOMxPwr_SetPower(const WCHAR* port, const PALComPortPower* power) {
  if (power == nullptr) return E_FAIL;
  pal::kTrace.Info("SetPower: %ls, fEnable:%d, portId:%d - Does nothing", pal::ShownText(port),
                   power->enable, power->port_id);
  return S_OK;
}

HRESULT PALAPI PALCOMxPwr_GetPower(const WCHAR* port, PALComPortPower* power) {
  if (power == nullptr) return E_FAIL;
  power->enable = 0;
  pal::kTrace.Info("PALCOMxPwr_GetPower: Comx:%ls, portId:%d - Does nothing", pal::ShownText(port),
                   power->port_id);
  return S_OK;
}
