#include <fmt/format.h>

#include <algorithm>

#include "platform/sim/coredll/free_library.h"
#include "platform/sim/kernel/own_library.h"

namespace sim {
namespace {

// A loaded library by its handle.
std::map<std::string, unsigned, std::less<>>::iterator FindLoaded(Call& call, HMODULE module) {
  auto& loaded = call.process().modules;
  const auto number = reinterpret_cast<std::uintptr_t>(module);
  const auto name = call.kernel().module_names.find(number);
  return name == call.kernel().module_names.end() ? loaded.end() : loaded.find(name->second);
}

bool IsOwnLibrary(const ProcessState& process, std::string_view wanted) {
  if (!process.modules.contains(kOwnLibrary)) return false;
  return EqualNoCase(wanted, kOwnLibrary) ||
         EqualNoCase(wanted, kOwnLibrary.substr(kOwnLibrary.rfind('\\') + 1));
}

// The module that a name leads to, as the process knows it: an installed one, or the library that
// the process has; empty where there is none.
std::string FindByName(Call& call, std::string_view wanted) {
  const Module* module = call.kernel().FindModule(wanted);
  if (module != nullptr) return module->name;
  return std::string(IsOwnLibrary(call.process(), wanted) ? kOwnLibrary : "");
}

FARPROC FindExport(Call& call, LPCWSTR name) {
  void* const address = call.process().library->Symbol(ToUtf8(name).c_str());
  if (address == nullptr) return call.Fail<FARPROC>(ERROR_PROC_NOT_FOUND, nullptr);
  return reinterpret_cast<FARPROC>(address);
}

}  // namespace

BOOL FreeLoaded(Call& call, HMODULE module) {
  const auto loaded = FindLoaded(call, module);
  if (loaded == call.process().modules.end()) {
    call.Misuse("was given a library that is not loaded");
    return call.Fail(ERROR_INVALID_HANDLE, FALSE);
  }
  if (--loaded->second > 0) return TRUE;
  const std::string name = loaded->first;
  call.process().modules.erase(loaded);
  if (name == kOwnLibrary) UnloadOwnLibrary(call.lock(), call.process());
  call.Log(Effect::kModule, name + " freed");
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
  const std::string found = sim::FindByName(call, wanted);
  if (found.empty()) {
    call.Log(Effect::kModule, wanted + " not found");
    return call.Fail<HINSTANCE>(ERROR_MOD_NOT_FOUND, nullptr);
  }
  if (++call.process().modules[found] == 1) call.Log(Effect::kModule, found + " loaded");
  return reinterpret_cast<HMODULE>(call.kernel().ModuleHandle(found));
}

BOOL FreeLibrary(HMODULE module) {
  Call call(CallId::FreeLibrary);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  return sim::FreeLoaded(call, module);
}

FARPROC GetProcAddressW(HMODULE module, LPCWSTR name) {
  Call call(CallId::GetProcAddressW);
  if (call.fault() != 0) return call.Fail<FARPROC>(call.fault(), nullptr);
  if (name == nullptr) return call.Fail<FARPROC>(ERROR_INVALID_PARAMETER, nullptr);
  const auto loaded = sim::FindLoaded(call, module);
  if (loaded == call.process().modules.end()) {
    call.Misuse("was given a library that is not loaded");
    return call.Fail<FARPROC>(ERROR_INVALID_HANDLE, nullptr);
  }
  if (loaded->first == sim::kOwnLibrary) return sim::FindExport(call, name);
  const sim::Module* found = call.kernel().FindModule(loaded->first);
  if (found == nullptr) return call.Fail<FARPROC>(ERROR_PROC_NOT_FOUND, nullptr);
  const auto entry = found->entries.find(sim::ToUtf8(name));
  if (entry == found->entries.end()) return call.Fail<FARPROC>(ERROR_PROC_NOT_FOUND, nullptr);
  return entry->second;
}

// A path that does not fit is cut, and its length is then that of the buffer.
DWORD GetModuleFileNameW(HMODULE module, LPWSTR name, DWORD units) {
  Call call(CallId::GetModuleFileNameW);
  if (call.fault() != 0) return call.Fail(call.fault(), DWORD{0});
  if (name == nullptr || units == 0) return call.Fail(ERROR_INVALID_PARAMETER, DWORD{0});
  if (module == nullptr) call.Misuse("of the program is not simulated");
  const auto loaded = sim::FindLoaded(call, module);
  if (loaded == call.process().modules.end()) return call.Fail(ERROR_INVALID_HANDLE, DWORD{0});
  const std::u16string path = sim::ToUtf16(loaded->first);
  const std::size_t copied = std::min<std::size_t>(path.size(), units - 1);
  std::copy_n(path.begin(), copied, name);
  name[copied] = 0;
  return static_cast<DWORD>(copied < path.size() ? units : copied);
}
