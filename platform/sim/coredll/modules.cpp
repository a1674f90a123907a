#include "platform/sim/coredll/free_library.h"
#include "platform/sim/kernel/own_library.h"

namespace sim {
namespace {

using Loaded = std::map<std::string, unsigned, std::less<>>;

// A library that the process has loaded, by its handle; misuse where it has none such.
Loaded::iterator FindLoaded(Call& call, HMODULE module) {
  Loaded& loaded = call.process().modules;
  const auto path = call.kernel().module_names.find(reinterpret_cast<std::uintptr_t>(module));
  const auto found =
      path == call.kernel().module_names.end() ? loaded.end() : loaded.find(path->second);
  if (found == loaded.end()) call.Misuse("was given a library that is not loaded");
  return found;
}

bool IsOwnLibrary(const ProcessState& process, std::string_view wanted) {
  if (!process.modules.contains(kOwnLibrary)) return false;
  return EqualNoCase(wanted, kOwnLibrary) ||
         EqualNoCase(wanted, kOwnLibrary.substr(kOwnLibrary.rfind('\\') + 1));
}

// The path of the library that a path or a name leads to; empty where there is none. A name is that
// of a library in \Windows, and after that of the one that the process was made with.
std::string FindByName(Call& call, const std::string& wanted) {
  const bool is_path = wanted.find('\\') != std::string::npos;
  const Module* module = call.kernel().FindModule(is_path ? wanted : "\\Windows\\" + wanted);
  if (module != nullptr) return module->path();
  return std::string(IsOwnLibrary(call.process(), wanted) ? kOwnLibrary : "");
}

// Those in \Windows are known by their name.
std::string Shown(const std::string& path) {
  constexpr std::string_view kWindows = "\\Windows\\";
  return path.starts_with(kWindows) ? path.substr(kWindows.size()) : path;
}

FARPROC FindEntry(Call& call, const std::string& path, const std::string& name) {
  if (path == kOwnLibrary) {
    return reinterpret_cast<FARPROC>(call.process().library->Symbol(name.c_str()));
  }
  const Module* module = call.kernel().FindModule(path);
  if (module == nullptr) return nullptr;
  const auto entry = module->entries.find(name);
  return entry == module->entries.end() ? nullptr : entry->second;
}

}  // namespace

BOOL FreeLoaded(Call& call, HMODULE module) {
  const auto loaded = FindLoaded(call, module);
  if (loaded == call.process().modules.end()) return call.Fail(ERROR_INVALID_HANDLE, FALSE);
  if (--loaded->second > 0) return TRUE;
  const std::string path = loaded->first;
  call.process().modules.erase(loaded);
  if (path == kOwnLibrary) UnloadOwnLibrary(call.lock(), call.process());
  call.Log(Effect::kModule, Shown(path) + " freed");
  return TRUE;
}

}  // namespace sim

using sim::Call;
using sim::CallId;
using sim::Effect;

HINSTANCE LoadLibraryW(LPCWSTR name) {
  Call call(CallId::LoadLibraryW);
  if (call.fault() != 0) return call.Fail<HINSTANCE>(call.fault(), nullptr);
  if (name == nullptr) return call.Fail<HINSTANCE>(ERROR_INVALID_PARAMETER, nullptr);
  const std::string wanted = sim::ToUtf8(name);
  const std::string path = sim::FindByName(call, wanted);
  if (path.empty()) {
    call.Log(Effect::kModule, wanted + " not found");
    return call.Fail<HINSTANCE>(ERROR_MOD_NOT_FOUND, nullptr);
  }
  if (++call.process().modules[path] == 1) call.Log(Effect::kModule, sim::Shown(path) + " loaded");
  return reinterpret_cast<HINSTANCE>(call.kernel().ModuleHandle(path));
}

BOOL FreeLibrary(HMODULE module) {
  Call call(CallId::FreeLibrary);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  return sim::FreeLoaded(call, module);
}

FARPROC GetProcAddressW(HMODULE module, LPCWSTR name) {
  Call call(CallId::GetProcAddressW, sim::Named(name));
  if (call.fault() != 0) return call.Fail<FARPROC>(call.fault(), nullptr);
  if (name == nullptr) return call.Fail<FARPROC>(ERROR_INVALID_PARAMETER, nullptr);
  const auto loaded = sim::FindLoaded(call, module);
  if (loaded == call.process().modules.end()) {
    return call.Fail<FARPROC>(ERROR_INVALID_HANDLE, nullptr);
  }
  const FARPROC entry = sim::FindEntry(call, loaded->first, sim::ToUtf8(name));
  return entry == nullptr ? call.Fail<FARPROC>(ERROR_PROC_NOT_FOUND, nullptr) : entry;
}

// A path that does not fit is cut, and its length is then that of the buffer.
DWORD GetModuleFileNameW(HMODULE module, LPWSTR name, DWORD units) {
  Call call(CallId::GetModuleFileNameW);
  if (call.fault() != 0) return call.Fail(call.fault(), DWORD{0});
  if (name == nullptr || units == 0) return call.Fail(ERROR_INVALID_PARAMETER, DWORD{0});
  std::string file = call.process().path;
  if (module != nullptr) {
    const auto loaded = sim::FindLoaded(call, module);
    if (loaded == call.process().modules.end()) return call.Fail(ERROR_INVALID_HANDLE, DWORD{0});
    file = loaded->first;
  }
  const std::u16string path = sim::ToUtf16(file);
  const std::size_t copied = path.copy(name, units - 1);
  name[copied] = 0;
  return static_cast<DWORD>(copied < path.size() ? units : copied);
}
