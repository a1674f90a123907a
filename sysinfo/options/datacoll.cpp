// The manufacturing options in the file datacoll.
#include <array>
#include <optional>
#include <span>

#include "frame/result.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palmfgopt.h"
#include "sysinfo/options/device_codes.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kConfigStore};

constexpr DWORD kSecondInternalDeviceOffset = 2;
constexpr DWORD kImageOrientationOffset = 4;
constexpr DWORD kMountingRotationOffset = 5;

using Datacoll = std::array<BYTE, 1024>;

HRESULT ReadDatacoll(std::span<BYTE> data, DWORD& bytes_read) {
  const UniqueFile file(CreateFileW(TEXT("\\ConfigStore\\datacoll"), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) {
    const DWORD error = GetLastError();
    kTrace.Error("LoadCFGDatacoll - CreateFile() error, GetLastError:0x%x", error);
    return HResultFromWin32(error);
  }
  if (ReadFile(file.get(), data.data(), static_cast<DWORD>(data.size()), &bytes_read, nullptr) ==
      FALSE) {
    const DWORD error = GetLastError();
    bytes_read = 0;
    kTrace.Error("LoadCFGDatacoll - ReadFile() error, GetLastError:0x%x", error);
    return HResultFromWin32(error);
  }
  for (DWORD at = 0; at < bytes_read; ++at) {
    kTrace.Info("LoadCFGDatacoll, rgucCFGData[%d]=%d", at, data[at]);
  }
  return bytes_read != 0 ? S_OK : E_FAIL;
}

// Reads at most `data.size()` bytes. S_OK; E_FAIL for an empty file; the error of the open or the
// read, with nothing read.
HRESULT LoadCFGDatacoll(std::span<BYTE> data, DWORD& data_bytes) {
  kTrace.Info("Entry LoadCFGDatacoll, dwMaxDataSizeBytes:%d", static_cast<DWORD>(data.size()));
  data_bytes = 0;
  const HRESULT result = ReadDatacoll(data, data_bytes);
  kTrace.Info("Exit LoadCFGDatacoll, hr:0x%x, dwBytesRead:%d, *pdwDataSizeBytes:%d", result,
              data_bytes, data_bytes);
  return result;
}

// Reads one byte of the file: 0 where the file cannot be loaded or has no such byte. `data_bytes`
// receives the file's size.
HRESULT LoadDatacollByte(DWORD offset, DWORD& value, DWORD& data_bytes) {
  Datacoll data;
  const HRESULT result = LoadCFGDatacoll(data, data_bytes);
  value = Succeeded(result) && offset < data_bytes ? data[offset] : 0;
  return result;
}

DWORD SecondDeviceType(BYTE code) {
  const std::optional<DWORD> device_type = FindDeviceType(code);
  if (!device_type) {
    kTrace.Info("%s device type %d", "Did not find", code);
    return PAL_DEVICE_TYPE_UNKNOWN;
  }
  kTrace.Info("Second Internal Device type: %d", *device_type);
  kTrace.Info("%s device type %d", "Found", code);
  return *device_type;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALMFGOpt_InternalDevice2Type(DWORD* type) {
  if (type == nullptr) return E_FAIL;
  pal::kTrace.Info("Entry PALMFGOpt_InternalDevice2Type,SECOND_INTERNAL_DEVICE_OFFSET:%d ",
                   pal::kSecondInternalDeviceOffset);
  *type = PAL_DEVICE_TYPE_NONE;
  pal::Datacoll data;
  DWORD data_bytes = 0;
  const HRESULT result = pal::LoadCFGDatacoll(data, data_bytes);
  if (pal::Failed(result) || data_bytes <= pal::kSecondInternalDeviceOffset) {
    pal::kTrace.Error("PALMFGOpt_InternalDevice2Type error hr:0x%x, dwDataSizeBytes:%d", result,
                      data_bytes);
    return result;
  }
  *type = pal::SecondDeviceType(data[pal::kSecondInternalDeviceOffset]);
  pal::kTrace.Info("Exit PALMFGOpt_InternalDevice2Type hr: 0x%x, *peDeviceType: %d", result, *type);
  return result;
}

HRESULT PALAPI PALMFGOpt_InternalDevice_ImageOrientation(DWORD* orientation) {
  if (orientation == nullptr) return E_FAIL;
  DWORD data_bytes = 0;
  const HRESULT result =
      pal::LoadDatacollByte(pal::kImageOrientationOffset, *orientation, data_bytes);
  pal::kTrace.Info(
      "PALMFGOpt_InternalDevice_ImageOrientation. hr: 0x%x, dwDataSizeBytes:%d, *pdwImageOrientation:%d",
      result, data_bytes, *orientation);
  return result;
}

HRESULT PALAPI PALMFGOpt_InternalDevice2_MountingRotation(DWORD* rotation) {
  if (rotation == nullptr) return E_FAIL;
  DWORD data_bytes = 0;
  const HRESULT result = pal::LoadDatacollByte(pal::kMountingRotationOffset, *rotation, data_bytes);
  pal::kTrace.Info(
      "PALMFGOpt_InternalDevice2_MountingRotation. hr: 0x%x, dwDataSizeBytes:%d, *pdwMountRotaion:%d",
      result, data_bytes, *rotation);
  return result;
}
