#include "platform/device/loader/imports.h"

#include <dlfcn.h>

#include <algorithm>
#include <string_view>

#include "platform/wince.h"

extern "C" void* __wrap_malloc(size_t bytes);
extern "C" void __wrap_free(void* block);

namespace sim {
namespace {

struct RenamedImport {
  std::string_view library;
  std::string_view name;
  void* function;
};

template <typename Function>
void* AddressOf(Function* function) {
  return reinterpret_cast<void*>(function);
}

using Compare = int(const WCHAR*, const WCHAR*);
using CompareSome = int(const WCHAR*, const WCHAR*, size_t);
using Measure = size_t(const WCHAR*);
using Widen = size_t(WCHAR*, const char*, size_t);
using Narrow = size_t(char*, const WCHAR*, size_t);

// Those that the simulator has under another name than the image: the host has functions of the
// same names, or C++ a name of its own.
const RenamedImport kRenamed[] = {
    {"bthutil.dll", "#2", AddressOf(&BthGetMode)},
    {"coredll.dll", "malloc", AddressOf(&__wrap_malloc)},
    {"coredll.dll", "free", AddressOf(&__wrap_free)},
    {"coredll.dll", "_wcsicmp", AddressOf<Compare>(&_wcsicmp)},
    {"coredll.dll", "_wcsnicmp", AddressOf<CompareSome>(&_wcsnicmp)},
    {"coredll.dll", "wcslen", AddressOf<Measure>(&wcslen)},
    {"coredll.dll", "mbstowcs", AddressOf<Widen>(&mbstowcs)},
    {"coredll.dll", "wcstombs", AddressOf<Narrow>(&wcstombs)},
};

}  // namespace

void* FindImport(const std::string& library, const std::string& name) {
  const auto* const renamed = std::ranges::find_if(kRenamed, [&](const RenamedImport& import) {
    return import.library == library && import.name == name;
  });
  return renamed != std::end(kRenamed) ? renamed->function : dlsym(RTLD_DEFAULT, name.c_str());
}

}  // namespace sim
