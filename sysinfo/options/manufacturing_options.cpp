// The manufacturing options in non-volatile parameters and policies.
#include <array>
#include <bit>
#include <optional>
#include <span>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palmfgopt.h"
#include "sysinfo/internal.h"
#include "sysinfo/options/device_codes.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kConfigStore};

// The requests: the parameter's id, in the number of bytes that the kernel expects.
constexpr std::array<BYTE, 4> kInternalDeviceCode{0x1A};
constexpr std::array<BYTE, 4> kDataCollectionFlags{0x1B};
constexpr std::array<BYTE, 2> kAitBit{0xD7};

constexpr DWORD kDeviceCodeMask = 0x7F;
constexpr DWORD kFallbackDeviceType = PAL_DEVICE_TYPE_ENG17;
static_assert(kDeviceNames[kFallbackDeviceType] == WideText(TEXT("ENG17")));

// Nothing where the read fails. Bytes that the parameter does not have are 0.
std::optional<DWORD> ReadParameter(std::span<const BYTE> request) {
  std::array<BYTE, sizeof(DWORD)> value{};
  DWORD bytes_returned = 0;
  if (!PalReadNvParm(request, value, bytes_returned)) return std::nullopt;
  return std::bit_cast<DWORD>(value);
}

DWORD ReadInternalDeviceType() {
  const std::optional<DWORD> parameter = ReadParameter(kInternalDeviceCode);
  if (!parameter) {
    kTrace.Error("KernelIoControl (IOCTL_HAL_DVL_READ_PARM) error: %x", GetLastError());
    kTrace.Info("Hardcoding Internal Device type as ENG17");
    return kFallbackDeviceType;
  }
  const DWORD code = *parameter & kDeviceCodeMask;
  kTrace.Info("EEP DeviceType: 0x%x", code);
  const std::optional<DWORD> device_type = FindDeviceType(code);
  if (!device_type) {
    kTrace.Error("%s device type 0x%x", "Did not find", code);
    return PAL_DEVICE_TYPE_UNKNOWN;
  }
  kTrace.Info("Internal Device type: 0x%x", *device_type);
  kTrace.Info("%s device type 0x%x", "Found", code);
  return *device_type;
}

bool IsImageCaptureDisabled() {
  DWORD disabled = 0;
  return Succeeded(PALRegGetDword(HKEY_LOCAL_MACHINE, kPolicyPath, TEXT("DisableImageCapture"),
                                  &disabled)) &&
         disabled != 0;
}

}  // namespace

DWORD IsAITConfig() {
  const std::optional<DWORD> value = ReadParameter(kAitBit);
  if (!value) NKDbgPrintfW(TEXT("ERROR: IsAITConfig: Failed querying AIT bit\r\n"));
  return value.value_or(0);
}

}  // namespace pal

HRESULT PALAPI PALMFGOpt_InternalDeviceType(DWORD* type, DWORD* s6_installed) {
  if (type == nullptr || s6_installed == nullptr) return E_FAIL;
  pal::kTrace.Info("Entry PALMFGOpt_InternalDeviceType");
  *s6_installed = 0;
  *type = pal::ReadInternalDeviceType();
  pal::kTrace.Info("Exit PALMFGOpt_InternalDeviceType hr: 0x%x, DeviceType: %d, S6 Installed: %d",
                   S_OK, *type, *s6_installed);
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_IsCameraEnabled(DWORD* enabled) {
  if (enabled == nullptr) return E_FAIL;
  pal::kTrace.Info("PALMFGOpt_IsCameraEnabled() - Entry");
  *enabled = pal::IsAITConfig() == 0 && !pal::IsImageCaptureDisabled() ? 1 : 0;
  pal::kTrace.Info("0x%x=PALMFGOpt_IsCameraEnabled(out:%u) - Exit", S_OK, *enabled);
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_IsDravonelContentEnabled(DWORD* enabled) {
  if (enabled == nullptr) return E_FAIL;
  *enabled = 1;
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_IsDataCollectionContentEnabled(DWORD* enabled) {
  if (enabled == nullptr) return E_FAIL;
  *enabled = 1;
  const std::optional<DWORD> flags = pal::ReadParameter(pal::kDataCollectionFlags);
  if (!flags) {
    pal::kTrace.Error("KernelIoControl (DVL_NVPARM_DATACOLLECTION_FLAGS) error: %x",
                      GetLastError());
    return E_FAIL;
  }
  *enabled = *flags != 0 ? 1 : 0;
  pal::kTrace.Info("Data Collection Enabled = %d", *enabled);
  return S_OK;
}

HRESULT PALAPI PALMFGOpt_IsBluetoothModuleInstalled(DWORD* installed) {
  if (installed == nullptr) return E_FAIL;
  *installed = 1;
  if (PALMFGOpt_IsDisabledByPolicy(TEXT("Bluetooth")) == PAL_MFGOPT_S_DISABLED) {
    pal::kTrace.Info("PALMFGOpt_IsBluetoothModuleInstalled. BT is Disabled");
    *installed = 0;
  }
  pal::kTrace.Info("PALMFGOpt_IsBluetoothModuleInstalled *pfIsInstalled:%d", *installed);
  return S_OK;
}
