// The status byte of each scan type, kept in the file DCEDPM.
#include <array>

#include "frame/result.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palmfgopt.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kConfigStore};

constexpr const WCHAR* kStorePath = TEXT("\\ConfigStore\\DCEDPM");
// One byte for scan type 4, and one that all others share.
using DpmStatuses = std::array<BYTE, 2>;

constexpr DWORD StatusIndex(DWORD scan_type) {
  return scan_type == 4 ? 1 : 0;
}

HANDLE OpenStore(DWORD access, DWORD disposition) {
  return CreateFileW(kStorePath, access, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

HRESULT WriteInitValue(HANDLE store) {
  constexpr DpmStatuses kInitValue{};
  DWORD bytes_written = 0;
  if (WriteFile(store, kInitValue.data(), sizeof(kInitValue), &bytes_written, nullptr) == FALSE) {
    const DWORD error = GetLastError();
    kTrace.Error("PALMFGOpt_OpenDPMCStore. Failed to Write Init value, error:%d", error);
    return HResultFromWin32(error);
  }
  kTrace.Info("PALMFGOpt_OpenDPMCStore. Successfull write %d byte", bytes_written);
  return S_OK;
}

HRESULT OpenOrCreateStore(DWORD access, UniqueFile& store) {
  store.Reset(OpenStore(access, OPEN_EXISTING));
  DWORD error = GetLastError();
  kTrace.Info("PALMFGOpt_OpenDPMCStore. OPEN_EXISTING - hFile:0x%x", store.get());
  if (store) return S_OK;
  if (error == ERROR_FILE_NOT_FOUND) {
    store.Reset(OpenStore(access | GENERIC_WRITE, CREATE_NEW));
    error = GetLastError();
    kTrace.Info("PALMFGOpt_OpenDPMCStore.CREATE_NEW - hFile:0x%x", store.get());
    if (store) return WriteInitValue(store.get());
  }
  kTrace.Error("PALMFGOpt_OpenDPMCStore Failed to open \\ConfigStore\\DCEDPM, LastError:%d", error);
  return HResultFromWin32(error);
}

// `store` holds the file on success and nothing otherwise. The position in a new file is behind the
// bytes that were written.
HRESULT PALMFGOpt_OpenDPMCStore(DWORD access, UniqueFile& store) {
  const HRESULT result = OpenOrCreateStore(access, store);
  kTrace.Info("PALMFGOpt_OpenDPMCStore. hr: 0x%x, hFile:0x%x", result, store.get());
  if (Failed(result)) store.Reset();
  return result;
}

HRESULT LastErrorResult() {
  return HResultFromWin32(GetLastError());
}

bool Seek(HANDLE store, DWORD offset) {
  return SetFilePointer(store, static_cast<LONG>(offset), nullptr, FILE_BEGIN) == offset;
}

HRESULT WriteStatus(DWORD index, BYTE status) {
  UniqueFile store;
  const HRESULT result = PALMFGOpt_OpenDPMCStore(GENERIC_WRITE, store);
  if (Failed(result)) return result;
  if (!Seek(store.get(), index)) return LastErrorResult();
  DWORD bytes_written = 0;
  if (WriteFile(store.get(), &status, sizeof(status), &bytes_written, nullptr) == FALSE) {
    return LastErrorResult();
  }
  return bytes_written == sizeof(status) ? S_OK : E_FAIL;
}

HRESULT ReadStatuses(DpmStatuses& statuses, DWORD& bytes_read) {
  UniqueFile store;
  const HRESULT result = PALMFGOpt_OpenDPMCStore(GENERIC_READ, store);
  if (Failed(result)) return result;
  if (!Seek(store.get(), 0)) return LastErrorResult();
  if (ReadFile(store.get(), statuses.data(), sizeof(statuses), &bytes_read, nullptr) == FALSE) {
    return LastErrorResult();
  }
  if (bytes_read != statuses.size()) {
    kTrace.Error("PALMFGOpt_GetDPMStatus. dwBytesRead:%d != %d", bytes_read,
                 static_cast<DWORD>(sizeof(statuses)));
  }
  return S_OK;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALMFGOpt_SetDPMStatus(DWORD scan_type, DWORD status) {
  const HRESULT result = pal::WriteStatus(pal::StatusIndex(scan_type), static_cast<BYTE>(status));
  pal::kTrace.Info("PALMFGOpt_SetDPMStatus. eScanType:%d, hr: 0x%x, , eStatus:%d", scan_type,
                   result, status);
  return result;
}

HRESULT PALAPI PALMFGOpt_GetDPMStatus(DWORD scan_type, DWORD* status) {
  if (status == nullptr) return E_FAIL;
  pal::DpmStatuses statuses{};
  DWORD bytes_read = 0;
  const HRESULT result = pal::ReadStatuses(statuses, bytes_read);
  *status = statuses[pal::StatusIndex(scan_type)];
  pal::kTrace.Info("PALMFGOpt_GetDPMStatus. eScanType: %d, hr: 0x%x,*peStatus:%d, dwBytesRead:%d",
                   scan_type, result, *status, bytes_read);
  return result;
}
