// The Bluetooth utility library.
#include "platform/sim/coredll/call.h"

namespace {
constexpr LONG kNotConnected = 1167;  // ERROR_DEVICE_NOT_CONNECTED: there is no radio
}

// Returns the error, as the registry's calls do.
int BthGetMode(LPDWORD mode) {
  sim::Call call(sim::CallId::BthGetMode);
  if (call.fault() != 0) return call.Fail(call.fault());
  if (mode == nullptr) return call.Fail(ERROR_INVALID_PARAMETER);
  const auto& radio = call.kernel().hardware.bluetooth;
  if (!radio) return call.Fail(kNotConnected);
  *mode = static_cast<DWORD>(*radio);
  return call.Answer(*mode);
}
