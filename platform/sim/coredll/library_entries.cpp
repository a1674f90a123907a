#include "platform/sim/coredll/library_entries.h"

#include <mutex>
#include <string>

#include "platform/sim/kernel/kernel.h"
#include "platform/wince.h"

namespace sim {
namespace {

void LogFromEntry(Effect effect, std::string text, DWORD category = 0) {
  const ThreadState* thread = CurrentThread();
  if (thread == nullptr) return;
  Kernel& kernel = thread->process.kernel;
  const Scheduler::Lock lock(kernel.mutex);
  kernel.Log(thread, effect, std::move(text), category);
}

// The event log keeps every line, whatever its category.
DWORD LogString(DWORD category, const char* text) {
  LogFromEntry(Effect::kTrace, Escape(text), category);
  return 0;
}

int UpdateAudioFromRegistry() {
  LogFromEntry(Effect::kAudio, "settings read from the registry");
  return 0;
}

// Entries are kept as the platform's lookup gives them: whoever calls one knows its real type.
int (*const kLogString)() = reinterpret_cast<int (*)()>(reinterpret_cast<void*>(&LogString));

}  // namespace

std::vector<Module> BuiltInModules() {
  return {
      {"coredll.dll", {{"AudioUpdateFromRegistry", &UpdateAudioFromRegistry}}},
      {"DVLEventLog.dll", {{"DVLLogString", kLogString}}},
  };
}

}  // namespace sim
