#include "platform/device/loader/imports.h"

#include <dlfcn.h>

#include <algorithm>
#include <string_view>

#include "platform/wince.h"

extern "C" void* __wrap_malloc(size_t bytes);
extern "C" void __wrap_free(void* block);

namespace sim {
namespace {

struct Import {
  std::string_view library;
  std::string_view name;
  void* function;
};

// Those that the simulator has under another name than the image: the host has functions of the
// same names, or C++ a name of its own.
const Import kRenamed[] = {
    {"bthutil.dll", "#2", reinterpret_cast<void*>(&BthGetMode)},
    {"coredll.dll", "malloc", reinterpret_cast<void*>(&__wrap_malloc)},
    {"coredll.dll", "free", reinterpret_cast<void*>(&__wrap_free)},
    {"coredll.dll", "wcslen",
     reinterpret_cast<void*>(static_cast<size_t (*)(const WCHAR*)>(&wcslen))},
    {"coredll.dll", "mbstowcs",
     reinterpret_cast<void*>(static_cast<size_t (*)(WCHAR*, const char*, size_t)>(&mbstowcs))},
    {"coredll.dll", "wcstombs",
     reinterpret_cast<void*>(static_cast<size_t (*)(char*, const WCHAR*, size_t)>(&wcstombs))},
};

}  // namespace

void* FindImport(const std::string& library, const std::string& name) {
  const auto* const renamed = std::ranges::find_if(kRenamed, [&](const Import& import) {
    return import.library == library && import.name == name;
  });
  return renamed != std::end(kRenamed) ? renamed->function : dlsym(RTLD_DEFAULT, name.c_str());
}

}  // namespace sim
