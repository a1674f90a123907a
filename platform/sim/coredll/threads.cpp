// The threads that a process makes for itself.
#include "platform/sim/coredll/call.h"
#include "platform/sim/coredll/free_library.h"
#include "platform/sim/kernel/host_thread.h"

using sim::Call;
using sim::CallId;

// `security` must be empty. A thread that starts suspended (`flags`) is not simulated. The stack
// has the host's size, whatever `stack_bytes` says.
HANDLE CreateThread(LPSECURITY_ATTRIBUTES security, DWORD /*stack_bytes*/,
                    LPTHREAD_START_ROUTINE start, LPVOID argument, DWORD flags, LPDWORD thread_id) {
  Call call(CallId::CreateThread);
  if (call.fault() != 0) return call.Fail<HANDLE>(call.fault(), nullptr);
  if (security != nullptr || start == nullptr || flags != 0) {
    return call.Fail<HANDLE>(ERROR_INVALID_PARAMETER, nullptr);
  }
  const auto thread = call.process().AddThread();
  const auto& library = call.process().library;
  if (library != nullptr && library->Contains(reinterpret_cast<void*>(start))) {
    thread->calls_in_library = 1;  // to its end
  }
  sim::StartHostThread(thread, [start, argument] { start(argument); });
  if (thread_id != nullptr) *thread_id = thread->id;
  return call.AddHandle(thread->object);
}

// It never returns, so it cannot fail.
void FreeLibraryAndExitThread(HMODULE module, DWORD /*exit_code*/) {
  {
    Call call(CallId::FreeLibraryAndExitThread);
    call.thread().left_library = true;
    sim::FreeLoaded(call, module);
  }
  throw sim::ThreadExit();
}
