// The action of the power button, stored as the code that its driver reads.
#include <algorithm>
#include <array>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palpwr.h"

namespace pal {
namespace {

constexpr const WCHAR* kKey = TEXT("Drivers\\Builtin\\Pwrbutton");
constexpr const WCHAR* kValueName = TEXT("PowerButtonSuspendType");

// By option.
constexpr std::array<DWORD, 6> kCodes{0x00000000, 0x01000000, 0x00200000,
                                      0x00040000, 0x00800000, 0x00020000};

}  // namespace
}  // namespace pal

// An unknown option is stored as option 0 and not refused: callers rely on it.
HRESULT PALAPI PALPWRSetPwrButton(LONG option) {
  pal::kPowerTrace.Info("PALPWRSetPwrButton - Entry.  in_opt: %d\r\n", option);
  const auto index = static_cast<DWORD>(option);
  const bool is_option = index < pal::kCodes.size();
  if (!is_option) pal::kPowerTrace.Error("PALPWRSetPwrButton - Input invalid.  in: %d\r\n", option);
  const DWORD code = pal::kCodes[is_option ? index : 0];
  pal::kPowerTrace.Info("SetPwrButton - Entry.  val: 0x%x", code);
  const HRESULT result = pal::PALRegSetDword(HKEY_LOCAL_MACHINE, pal::kKey, pal::kValueName, code);
  if (pal::Failed(result)) pal::kPowerTrace.Error("SetPwrButton - ERROR saving power button");
  return result;
}

HRESULT PALAPI PALPWRGetPwrButton(DWORD* option) {
  if (option == nullptr) return E_FAIL;
  DWORD code = 0;
  const HRESULT result = pal::PALRegGetDword(HKEY_LOCAL_MACHINE, pal::kKey, pal::kValueName, &code);
  if (pal::Failed(result)) {
    pal::kPowerTrace.Error("GetPwrButton - ERROR reading reg: %ls\\%ls", pal::kKey,
                           pal::kValueName);
    return result;
  }
  const auto* const found = std::ranges::find(pal::kCodes, code);
  if (found == pal::kCodes.end()) {
    pal::kPowerTrace.Error("GetPwrButton - Invalid reg entry for power button: 0x%x\r\n", code);
    return E_FAIL;
  }
  *option = static_cast<DWORD>(found - pal::kCodes.begin());
  return result;
}
