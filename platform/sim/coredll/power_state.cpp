// Requests for a power state: those that restart the device.
#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "platform/sim/coredll/call.h"

namespace sim {
namespace {

struct RestartState {
  std::u16string_view name;
  RestartKind kind;
};

constexpr std::array kRestartStates{
    RestartState{u"reboot", RestartKind::kWarm},
    RestartState{u"coldreboot", RestartKind::kCold},
};

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;

// Does not return where it restarts the device.
DWORD SetSystemPowerState(LPCWSTR state, DWORD flags, DWORD options) {
  Call call(CallId::SetSystemPowerState);
  constexpr auto kRefused = static_cast<DWORD>(ERROR_INVALID_PARAMETER);
  if (call.fault() != 0) return call.Fail(call.fault(), static_cast<DWORD>(call.fault()));
  const std::u16string_view name(state == nullptr ? u"" : state);
  const auto* const row = std::ranges::find_if(
      sim::kRestartStates,
      [&](const sim::RestartState& known) { return sim::EqualNoCase(known.name, name); });
  if (row == sim::kRestartStates.end() || flags != POWER_STATE_RESET) {
    call.Misuse(fmt::format("was asked for the unknown state '{}' with the flags {:#010x}",
                            sim::ToUtf8(name), flags));
    return call.Fail(ERROR_INVALID_PARAMETER, kRefused);
  }
  if ((options & POWER_FORCE) == 0) {
    call.Misuse("was asked for a restart without force, which any driver may refuse");
    return call.Fail(ERROR_INVALID_PARAMETER, kRefused);
  }
  call.kernel().Restart(&call.thread(), row->kind);
  throw sim::ProcessKilled();
}
