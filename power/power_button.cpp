// What the power button does, as the code that its driver reads.
#include <algorithm>
#include <array>

#include "frame/registry.h"
#include "frame/result.h"
#include "include/palpwr.h"
#include "power/power_trace.h"

using pal::kPowerTrace;

namespace {

constexpr const WCHAR* kKey = TEXT("Drivers\\Builtin\\Pwrbutton");
constexpr const WCHAR* kValueName = TEXT("PowerButtonSuspendType");

// By option.
constexpr std::array<DWORD, 6> kCodes{0x00000000, 0x01000000, 0x00200000,
                                      0x00040000, 0x00800000, 0x00020000};

}  // namespace

// An option that there is not is stored as option 0 and not refused: kept, callers rely on it.
HRESULT PALAPI PALPWRSetPwrButton(LONG option) {
  kPowerTrace.Info("PALPWRSetPwrButton - Entry.  in_opt: %d\r\n", option);
  const auto index = static_cast<DWORD>(option);
  const bool is_option = index < kCodes.size();
  if (!is_option) kPowerTrace.Error("PALPWRSetPwrButton - Input invalid.  in: %d\r\n", option);
  const DWORD code = kCodes[is_option ? index : 0];
  kPowerTrace.Info("SetPwrButton - Entry.  val: 0x%x", code);
  const HRESULT result = PALRegSetDword(HKEY_LOCAL_MACHINE, kKey, kValueName, code);
  if (pal::Failed(result)) kPowerTrace.Error("SetPwrButton - ERROR saving power button");
  return result;
}

HRESULT PALAPI PALPWRGetPwrButton(DWORD* option) {
  if (option == nullptr) return E_FAIL;
  DWORD code = 0;
  const HRESULT result = PALRegGetDword(HKEY_LOCAL_MACHINE, kKey, kValueName, &code);
  if (pal::Failed(result)) {
    kPowerTrace.Error("GetPwrButton - ERROR reading reg: %ls\\%ls", kKey, kValueName);
    return result;
  }
  const auto* const found = std::ranges::find(kCodes, code);
  if (found == kCodes.end()) {
    kPowerTrace.Error("GetPwrButton - Invalid reg entry for power button: 0x%x\r\n", code);
    return E_FAIL;
  }
  *option = static_cast<DWORD>(found - kCodes.begin());
  return result;
}
