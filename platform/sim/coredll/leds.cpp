// The driver of the notification LEDs and of the vibrator.
#include <fmt/format.h>

#include <array>

#include "platform/sim/coredll/call.h"

namespace sim {
namespace {

constexpr LONG kVibratorCycleAdjust = -1;

BOOL Refuse(Call& call) {
  return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
}

bool IsVibrator(const Leds& leds, UINT number) {
  return leds.vibrator && leds.vibrator->number == number;
}

// The times of the simulated LEDs cannot be adjusted.
BOOL GiveSupports(Call& call, const Leds& leds, NLED_SUPPORTS_INFO& info) {
  const bool is_vibrator = IsVibrator(leds, info.LedNum);
  if (!is_vibrator && !leds.State(info.LedNum)) return Refuse(call);
  info = {};
  info.LedNum = is_vibrator ? leds.vibrator->number : info.LedNum;
  info.lCycleAdjust = is_vibrator ? kVibratorCycleAdjust : 0;
  return TRUE;
}

BOOL GiveSettings(Call& call, const Leds& leds, NLED_SETTINGS_INFO& info) {
  const auto state = leds.State(info.LedNum);
  if (!state && !IsVibrator(leds, info.LedNum)) return Refuse(call);
  const UINT number = info.LedNum;
  info = {};
  info.LedNum = number;
  info.OffOnBlink = static_cast<INT>(state.value_or(LedState::kOff));
  return TRUE;
}

template <class Info>
BOOL Answer(Call& call, Info& info, BOOL given) {
  const LONG error = call.Answer(info, given != FALSE ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER);
  return error == ERROR_SUCCESS ? TRUE : call.Fail(error, FALSE);
}

// The supports record says that no LED has times to adjust. A caller that sets them makes a
// mistake, also for a request that does not blink, where the driver ignores them.
void CheckTimes(Call& call, const NLED_SETTINGS_INFO& info) {
  if (info.TotalCycleTime == 0 && info.OnTime == 0 && info.OffTime == 0 && info.MetaCycleOn == 0 &&
      info.MetaCycleOff == 0) {
    return;
  }
  call.Misuse(fmt::format("was given times for LED {}, which has none to adjust",
                          static_cast<LONG>(info.LedNum)));
}

BOOL Vibrate(Call& call, const Leds& leds, int preset, INT command) {
  if (!leds.vibrator || command != static_cast<INT>(LedState::kBlink)) return Refuse(call);
  call.Log(Effect::kVibration,
           fmt::format("preset {} for {} ms", preset, leds.vibrator->length_ms));
  return TRUE;
}

BOOL Switch(Call& call, Leds& leds, const NLED_SETTINGS_INFO& info) {
  constexpr std::array<std::string_view, 3> kWords{"off", "on", "blinks"};
  const auto command = static_cast<std::size_t>(info.OffOnBlink);
  if (command >= kWords.size()) return Refuse(call);
  if (!leds.Set(info.LedNum, static_cast<LedState>(command))) return Refuse(call);
  call.Log(Effect::kLed, fmt::format("LED {} {}", info.LedNum, kWords.at(command)));
  return TRUE;
}

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;

BOOL NLedGetDeviceInfo(UINT info_id, void* output) {
  Call call(CallId::NLedGetDeviceInfo);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  if (output == nullptr) return sim::Refuse(call);
  const sim::Leds& leds = call.kernel().hardware.leds;
  if (info_id == NLED_SUPPORTS_INFO_ID) {
    auto& info = *static_cast<NLED_SUPPORTS_INFO*>(output);
    return sim::Answer(call, info, sim::GiveSupports(call, leds, info));
  }
  if (info_id == NLED_SETTINGS_INFO_ID) {
    auto& info = *static_cast<NLED_SETTINGS_INFO*>(output);
    return sim::Answer(call, info, sim::GiveSettings(call, leds, info));
  }
  call.Misuse(fmt::format("was given the unknown id {}", info_id));
  return sim::Refuse(call);
}

BOOL NLedSetDevice(UINT device_id, void* input) {
  Call call(CallId::NLedSetDevice);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  if (input == nullptr) return sim::Refuse(call);
  if (device_id != NLED_SETTINGS_INFO_ID) {
    call.Misuse(fmt::format("was given the unknown id {}", device_id));
    return sim::Refuse(call);
  }
  const auto& info = *static_cast<const NLED_SETTINGS_INFO*>(input);
  sim::CheckTimes(call, info);
  sim::Leds& leds = call.kernel().hardware.leds;
  const auto preset = sim::Leds::PresetOf(static_cast<LONG>(info.LedNum));
  return preset ? sim::Vibrate(call, leds, *preset, info.OffOnBlink)
                : sim::Switch(call, leds, info);
}
