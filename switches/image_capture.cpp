// Whether images may be captured: the device's build and the owner's policy decide.
#include "frame/registry.h"
#include "frame/trace.h"
#include "include/palimagecapture.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kImageCapturePolicy};
constexpr TraceSource kSwitchTrace{Facility::kSdmmc};

constexpr const WCHAR* kValueName = TEXT("DisableImageCapture");

LONG OpenPolicy(const TraceSource& trace, REGSAM access, UniqueRegistryKey& policy) {
  const LONG error = OpenRegistryKey(HKEY_LOCAL_MACHINE, kPolicyPath, access, policy);
  if (error != ERROR_SUCCESS) {
    trace.Error("Failed to open HKLM\\%ls. dwRet = %u", kPolicyPath, error);
  }
  return error;
}

PALImageCaptureStatus ReadPolicy() {
  UniqueRegistryKey policy;
  if (OpenPolicy(kTrace, KEY_QUERY_VALUE, policy) != ERROR_SUCCESS) {
    return PAL_IMAGE_CAPTURE_NOT_AVAILABLE;
  }
  DWORD disabled = 0;
  const LONG error = ReadNumber(policy, kValueName, disabled);
  kTrace.Info("HKLM\\%ls\\%ls = %u. lRet = %u", kPolicyPath, kValueName, disabled, error);
  if (error != ERROR_SUCCESS) {
    kTrace.Error("Failed to get HKLM\\%ls\\%ls. lRet = %u", kPolicyPath, kValueName, error);
    return PAL_IMAGE_CAPTURE_NOT_AVAILABLE;
  }
  return disabled != 0 ? PAL_IMAGE_CAPTURE_DISABLED : PAL_IMAGE_CAPTURE_ENABLED;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALImageCaptureGetStatus(DWORD* status) {
  if (status == nullptr) return E_FAIL;
  *status = PAL_IMAGE_CAPTURE_NOT_AVAILABLE;
  if (pal::IsAITConfig() == 0) *status = pal::ReadPolicy();
  return S_OK;
}

DWORD PALAPI PALImageCapture_SetEnable(BOOL enable) {
  pal::UniqueRegistryKey policy;
  if (pal::OpenPolicy(pal::kSwitchTrace, KEY_SET_VALUE, policy) != ERROR_SUCCESS)
    return PAL_IMAGE_CAPTURE_NOT_CHANGED;
  const DWORD disabled = enable == FALSE ? 1 : 0;
  const LONG error = pal::WriteNumber(policy, pal::kValueName, disabled);
  if (error == ERROR_SUCCESS) return PAL_IMAGE_CAPTURE_CHANGED;
  pal::kSwitchTrace.Error("Failed to set HKLM\\%ls\\%ls to %u. lRet = %u", pal::kPolicyPath,
                          pal::kValueName, disabled, error);
  return PAL_IMAGE_CAPTURE_NOT_CHANGED;
}
