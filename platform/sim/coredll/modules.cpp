#include "platform/sim/coredll/free_library.h"
#include "platform/sim/kernel/own_library.h"

namespace sim {
namespace {

using Loaded = std::map<std::string, unsigned, std::less<>>;

// Finds a library that the process has loaded, by its handle. An unknown handle is misuse.
Loaded::iterator FindLoaded(Call& call, HMODULE module) {
  Loaded& loaded = call.process().modules;
  const auto path = call.kernel().module_names.find(reinterpret_cast<std::uintptr_t>(module));
  const auto found =
      path == call.kernel().module_names.end() ? loaded.end() : loaded.find(path->second);
  if (found == loaded.end()) call.Misuse("was given a library that is not loaded");
  return found;
}

// The part of a path that tells the libraries of a process apart.
std::string_view StemOf(std::string_view path) {
  path.remove_prefix(path.rfind('\\') + 1);  // 0 without a backslash
  return path.substr(0, path.rfind('.'));
}

// The path of the library that LoadLibraryW loads for a path or a name; empty where there is none.
// A loaded library of this name comes first, whatever the path. A name without a folder means
// \Windows.
std::string FindByName(Call& call, const std::string& wanted) {
  for (const auto& [path, count] : call.process().modules) {
    if (EqualNoCase(StemOf(path), StemOf(wanted))) return path;
  }
  const bool is_path = wanted.find('\\') != std::string::npos;
  const Module* module = call.kernel().FindModule(is_path ? wanted : "\\Windows\\" + wanted);
  return module == nullptr ? "" : module->path();
}

// The journal shows a library in \Windows by its name, any other by its path.
std::string Shown(const std::string& path) {
  constexpr std::string_view kWindows = "\\Windows\\";
  return path.starts_with(kWindows) ? path.substr(kWindows.size()) : path;
}

FARPROC FindEntry(Call& call, const std::string& path, const std::string& name) {
  if (path == call.process().library_path) {
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
  if (path == call.process().library_path) UnloadOwnLibrary(call.lock(), call.process());
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

// A path that does not fit is cut. The answer is then the size of the buffer.
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
