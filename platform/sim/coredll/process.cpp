// The calls for a process's id, last error and heap, and for the debug output.
#include <cstdlib>

#include "platform/sim/coredll/call.h"
#include "platform/sim/coredll/format.h"

using sim::Call;
using sim::CallId;
using sim::Effect;

// These three calls read and write data of the calling thread. They cannot fail, so no fault can be
// planned for them.
DWORD GetLastError() {
  const sim::ThreadState* thread = sim::CurrentThread();
  return thread == nullptr ? 0 : thread->last_error;
}

void SetLastError(DWORD error) {
  sim::ThreadState* thread = sim::CurrentThread();
  if (thread != nullptr) thread->last_error = error;
}

DWORD GetCurrentProcessId() {
  const sim::ThreadState* thread = sim::CurrentThread();
  return thread == nullptr ? 0 : thread->process.id;
}

void NKDbgPrintfW(LPCWSTR format, ...) {
  Call call(CallId::NKDbgPrintfW);
  if (call.fault() != 0 || format == nullptr) return;
  call.Log(Effect::kDebug, sim::FormatDebugLine(format));
}

// The library's malloc and free are linked to these two; the host's own are not. The runtime of a
// build for coverage calls them too, from threads of no device: it gets the host's functions.
extern "C" void* __wrap_malloc(size_t bytes) {
  if (sim::CurrentThread() == nullptr) return std::malloc(bytes);
  Call call(CallId::malloc);
  if (call.fault() != 0) return nullptr;
  void* block = std::malloc(bytes);
  if (block != nullptr) call.process().heap.emplace(block, bytes);
  return block;
}

extern "C" void __wrap_free(void* block) {
  if (block == nullptr) return;
  if (sim::CurrentThread() == nullptr) return std::free(block);
  Call call(CallId::free);
  const auto held = call.process().heap.find(block);
  if (held == call.process().heap.end()) {
    call.Misuse("was given a block that the process does not have");
    return;
  }
  if (call.kernel().on_free) {
    call.kernel().on_free({static_cast<const char*>(block), held->second});
  }
  call.process().heap.erase(held);
  std::free(block);
}
