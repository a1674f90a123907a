// The list of the programmable buttons.
#include <span>
#include <string_view>

#include "frame/trace.h"
#include "include/palkey.h"
#include "keypad/layout.h"

HRESULT PALAPI PALKEYGetNumButtons(DWORD* count) {
  if (count == nullptr) return E_FAIL;
  *count = PAL_KEY_BUTTON_COUNT;
  pal::kKeypadTrace.Info("PALKEYGetNumButtons, *pnButtons=%d", *count);
  return S_OK;
}

HRESULT PALAPI PALKEYGetButtonName(LONG button, char* name, DWORD* length) {
  if (name == nullptr || length == nullptr) return E_FAIL;
  pal::kKeypadTrace.Info("PALKEYGetButtonName(%d,*,*)", button);
  if (!pal::ButtonIsSupported(button)) {
    pal::kKeypadTrace.Info("PALKEYGetButtonName returned 0x%08X", PAL_KEY_E_NOT_SUPPORTED);
    return PAL_KEY_E_NOT_SUPPORTED;
  }
  const std::string_view text = pal::FindButton(button)->name;
  if (!pal::Copy(std::span(name, PAL_KEY_BUTTON_NAME_LENGTH), text)) return E_FAIL;
  *length = static_cast<DWORD>(text.size());
  pal::kKeypadTrace.Info("PALKEYGetButtonName returned name=%s", name);
  return S_OK;
}
