// Whether images may be captured: the device's build, then the owner's policy.
#include "frame/registry.h"
#include "frame/trace.h"
#include "include/palimagecapture.h"
#include "sysinfo/manufacturing_options.h"

namespace {

constexpr pal::TraceSource kTrace{pal::Facility::kImageCapturePolicy};
constexpr pal::TraceSource kSwitchTrace{pal::Facility::kSdmmc};

constexpr const WCHAR* kValueName = TEXT("DisableImageCapture");

LONG OpenPolicy(const pal::TraceSource& trace, REGSAM access, pal::UniqueRegistryKey& policy) {
  const LONG error = pal::OpenRegistryKey(HKEY_LOCAL_MACHINE, pal::kPolicyPath, access, policy);
  if (error != ERROR_SUCCESS) {
    trace.Error("Failed to open HKLM\\%ls. dwRet = %u", pal::kPolicyPath, error);
  }
  return error;
}

PALImageCaptureStatus ReadPolicy() {
  pal::UniqueRegistryKey policy;
  if (OpenPolicy(kTrace, KEY_QUERY_VALUE, policy) != ERROR_SUCCESS) {
    return PAL_IMAGE_CAPTURE_NOT_AVAILABLE;
  }
  DWORD disabled = 0;
  DWORD bytes = sizeof(disabled);
  const LONG error = RegQueryValueExW(policy.get(), kValueName, nullptr, nullptr,
                                      reinterpret_cast<BYTE*>(&disabled), &bytes);
  kTrace.Info("HKLM\\%ls\\%ls = %u. lRet = %u", pal::kPolicyPath, kValueName, disabled, error);
  if (error != ERROR_SUCCESS) {
    kTrace.Error("Failed to get HKLM\\%ls\\%ls. lRet = %u", pal::kPolicyPath, kValueName, error);
    return PAL_IMAGE_CAPTURE_NOT_AVAILABLE;
  }
  return disabled != 0 ? PAL_IMAGE_CAPTURE_DISABLED : PAL_IMAGE_CAPTURE_ENABLED;
}

}  // namespace

HRESULT PALAPI PALImageCaptureGetStatus(DWORD* status) {
  if (status == nullptr) return E_FAIL;
  *status = PAL_IMAGE_CAPTURE_NOT_AVAILABLE;
  if (IsAITConfig() == 0) *status = ReadPolicy();
  return S_OK;
}

DWORD PALAPI PALImageCapture_SetEnable(BOOL enable) {
  pal::UniqueRegistryKey policy;
  if (OpenPolicy(kSwitchTrace, KEY_SET_VALUE, policy) != ERROR_SUCCESS) return 1;
  const DWORD disabled = enable == FALSE ? 1 : 0;
  const LONG error = RegSetValueExW(policy.get(), kValueName, 0, REG_DWORD,
                                    reinterpret_cast<const BYTE*>(&disabled), sizeof(disabled));
  if (error == ERROR_SUCCESS) return 0;
  kSwitchTrace.Error("Failed to set HKLM\\%ls\\%ls to %u. lRet = %u", pal::kPolicyPath, kValueName,
                     disabled, error);
  return 1;
}
