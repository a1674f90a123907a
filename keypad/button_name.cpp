// The list of the programmable buttons.
#include <span>
#include <string_view>

#include "include/palkey.h"
#include "keypad/keypad_trace.h"
#include "keypad/layout.h"

HRESULT PALAPI PALKEYGetNumButtons(DWORD* count) {
  if (count == nullptr) return E_FAIL;
  *count = PAL_KEY_BUTTON_COUNT;
  pal::kKeypadTrace.Info("%s, *pnButtons=%d", "PALKEYGetNumButtons", *count);
  return S_OK;
}

HRESULT PALAPI PALKEYGetButtonName(LONG button, char* name, DWORD* length) {
  constexpr const char* kName = "PALKEYGetButtonName";
  if (name == nullptr || length == nullptr) return E_FAIL;
  pal::kKeypadTrace.Info("%s(%d,*,*)", kName, button);
  if (!pal::ButtonIsSupported(button)) {
    pal::kKeypadTrace.Info("%s returned 0x%08X", kName, PAL_KEY_E_NOT_SUPPORTED);
    return PAL_KEY_E_NOT_SUPPORTED;
  }
  const std::string_view text = pal::FindButton(button)->name;
  if (!pal::Copy(std::span(name, PAL_KEY_BUTTON_NAME_LENGTH), text)) return E_FAIL;
  *length = static_cast<DWORD>(text.size());
  pal::kKeypadTrace.Info("%s returned name=%s", kName, name);
  return S_OK;
}
