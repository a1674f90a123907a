#include "scanner/scan_driver.h"

#include <array>
#include <atomic>

#include "frame/trace.h"
#include "frame/unique_handle.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kScanner};

enum class Sends : BYTE { kArgument, kInverse };

struct OperationRow {
  ScanOperation operation;
  DWORD code;
  Sends sends;
  TraceSource::Format<BOOL> success;
  TraceSource::Format<BOOL, DWORD> failure;
};

constexpr TraceSource::Format<BOOL> kTriggerSuccess =
    "PALSysio_SetScanTrigger( fTriggerOn:%d ) success\r\n";
constexpr TraceSource::Format<BOOL, DWORD> kTriggerFailure =
    "PALSysio_SetScanTrigger( fTriggerOn:%d ) err: %d\r\n";

constexpr auto kOperations = std::to_array<OperationRow>({
    {ScanOperation::kPower, 0x220044, Sends::kArgument, "PALSysio_SetScanPower( %d ) success\r\n",
     "PALSysio_SetScanPower(%d ) err: %d\r\n"},
    {ScanOperation::kEnable, 0x22004C, Sends::kArgument, "ScanSetEnable( %d ) success\r\n",
     "ScanSetEnable( %d ) err: %d\r\n"},
    {ScanOperation::kMode, 0x22003C, Sends::kInverse, "ScanSetOperationalMode( %d ) success\r\n",
     "ScanSetOperationalMode( %d ) err: %d\r\n"},
    {ScanOperation::kTrigger, 0x22006C, Sends::kArgument, kTriggerSuccess, kTriggerFailure},
    {ScanOperation::kSpiClockTrigger, 0x2200D0, Sends::kInverse, kTriggerSuccess, kTriggerFailure},
});

consteval bool AreInOrder() {
  for (size_t row = 0; row < kOperations.size(); ++row) {
    if (static_cast<size_t>(kOperations[row].operation) != row) return false;
  }
  return true;
}
static_assert(AreInOrder(), "an operation is the index of its row");

constexpr uintptr_t kNotOpen = ~uintptr_t{0};  // INVALID_HANDLE_VALUE

constinit std::atomic<uintptr_t> driver_handle{kNotOpen};

HANDLE DriverHandle() {
  return reinterpret_cast<HANDLE>(driver_handle.load(std::memory_order_relaxed));
}

void KeepDriverHandle(HANDLE handle) {
  driver_handle.store(reinterpret_cast<uintptr_t>(handle), std::memory_order_relaxed);
}

bool SendValue(DWORD code, DWORD value) {
  HANDLE driver = DriverHandle();
  if (!FileTraits::IsValid(driver)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return false;
  }
  DWORD returned = 0;
  return DeviceIoControl(driver, code, &value, sizeof(value), nullptr, 0, &returned, nullptr) !=
         FALSE;
}

}  // namespace

// The driver has one user at a time: the handle of an earlier open is closed first.
HANDLE OpenScanDriver() {
  CloseScanDriver();
  UniqueFile driver(CreateFileW(TEXT("SCD1:"), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                OPEN_EXISTING, 0, nullptr));
  if (!driver) {
    kTrace.Error("PALSysio_Init() CreateFile( SCD1: )error: 0x%x\r\n", GetLastError());
  }
  HANDLE handle = driver.Release();
  KeepDriverHandle(handle);
  return handle;
}

void CloseScanDriver() {
  UniqueFile(DriverHandle()).Reset();
  KeepDriverHandle(INVALID_HANDLE_VALUE);
}

HRESULT SendToScanDriver(ScanOperation operation, BOOL argument) {
  const OperationRow& row = kOperations[static_cast<size_t>(operation)];
  const bool is_on = argument != FALSE;
  if (!SendValue(row.code, is_on != (row.sends == Sends::kInverse) ? 1 : 0)) {
    kTrace.Error(row.failure, argument, GetLastError());
    return E_FAIL;
  }
  kTrace.Info(row.success, argument);
  return S_OK;
}

}  // namespace pal
