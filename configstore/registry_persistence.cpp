// Makes the registry survive a cold boot.
#include "frame/result.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palmfgopt.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kConfigStore};

// A service that flushes the registry holds this event and waits for it.
constexpr const WCHAR* kFlushEvent = TEXT("DVLRegFlushKeyAll");

struct RootFlush {
  HKEY root;
  Severity announced_as;
  TraceSource::Format<> announcement;
  TraceSource::Format<LONG> failure;
};

// The other roots are flushed also where one fails.
HRESULT FlushRoots() {
  const RootFlush flushes[] = {
      {HKEY_LOCAL_MACHINE, Severity::kInfo, "PALMFGOpt_PersistRegistry - RegFlushKey(HKLM)\r\n",
       "PALMFGOpt_PersistRegistry - ERROR RegFlushKey(HKLM).  win32err:0x%x\r\n"},
      // This announcement alone is an error line.
      {HKEY_CURRENT_USER, Severity::kError, "PALMFGOpt_PersistRegistry - RegFlushKey(HKCU)\r\n",
       "PALMFGOpt_PersistRegistry - ERROR RegFlushKey(HKCU).  win32err:0x%x\r\n"},
      {HKEY_CLASSES_ROOT, Severity::kInfo, "PALMFGOpt_PersistRegistry - RegFlushKey(HKCR)\r\n",
       "PALMFGOpt_PersistRegistry - ERROR RegFlushKey(HKCR).  win32err:0x%x\r\n"},
      {HKEY_USERS, Severity::kInfo, "PALMFGOpt_PersistRegistry - RegFlushKey(HKU)\r\n",
       "PALMFGOpt_PersistRegistry - ERROR RegFlushKey(HKU).  win32err:0x%x\r\n"},
  };
  HRESULT result = S_OK;
  for (const RootFlush& flush : flushes) {
    kTrace.Write(flush.announced_as, flush.announcement);
    const LONG error = RegFlushKey(flush.root);
    if (error == ERROR_SUCCESS) continue;
    kTrace.Error(flush.failure, error);
    result = E_FAIL;
  }
  return result;
}

HRESULT SignalService(HANDLE event) {
  kTrace.Echoed().Info("PALMFGOpt_PersistRegistry - SetEvent(%s)\r\n", WideTextAs8Bit(kFlushEvent));
  if (SetEvent(event)) return S_OK;
  kTrace.Error("PALMFGOpt_PersistRegistry - ERROR SetEvent(%s).  win32err:0x%x\r\n",
               WideTextAs8Bit(kFlushEvent), GetLastError());
  return E_FAIL;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALMFGOpt_PersistRegistry() {
  // A new event does not set the last error, so that an earlier one would be read.
  SetLastError(ERROR_SUCCESS);
  const pal::UniqueEvent event(CreateEventW(nullptr, TRUE, FALSE, pal::kFlushEvent));
  const DWORD error = GetLastError();
  if (!event) {
    pal::kTrace.Error("PALMFGOpt_PersistRegistry - ERROR CreateEvent(%s) win32err:0x%x",
                      pal::WideTextAs8Bit(pal::kFlushEvent), error);
    return E_FAIL;
  }
  return error == ERROR_ALREADY_EXISTS ? pal::SignalService(event.get()) : pal::FlushRoots();
}
