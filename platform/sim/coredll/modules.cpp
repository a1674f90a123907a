#include <fmt/format.h>

#include "platform/sim/coredll/call.h"

namespace sim {
namespace {

// A loaded library by its handle: the handle is the same in every process.
std::map<std::string, unsigned, std::less<>>::iterator FindLoaded(Call& call, HMODULE module) {
  auto& loaded = call.process().modules;
  const auto number = reinterpret_cast<std::uintptr_t>(module);
  const auto name = call.kernel().module_names.find(number);
  return name == call.kernel().module_names.end() ? loaded.end() : loaded.find(name->second);
}

HMODULE HandleOf(Kernel& kernel, const std::string& name) {
  for (const auto& [number, known] : kernel.module_names) {
    if (known == name) return reinterpret_cast<HMODULE>(number);
  }
  constexpr std::uintptr_t kFirst = 0x40000000;
  constexpr std::uintptr_t kStep = 0x00100000;
  const std::uintptr_t number = kFirst + kernel.module_names.size() * kStep;
  kernel.module_names.emplace(number, name);
  return reinterpret_cast<HMODULE>(number);
}

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;
using sim::Effect;

HINSTANCE LoadLibraryW(LPCWSTR name) {
  Call call(CallId::LoadLibraryW);
  if (call.fault() != 0) return call.Fail<HINSTANCE>(call.fault(), nullptr);
  if (name == nullptr) return call.Fail<HINSTANCE>(ERROR_INVALID_PARAMETER, nullptr);
  const std::string wanted = sim::ToUtf8(name);
  const sim::Module* module = call.kernel().FindModule(wanted);
  if (module == nullptr) {
    call.Log(Effect::kModule, wanted + " not found");
    return call.Fail<HINSTANCE>(ERROR_MOD_NOT_FOUND, nullptr);
  }
  if (++call.process().modules[module->name] == 1)
    call.Log(Effect::kModule, module->name + " loaded");
  return sim::HandleOf(call.kernel(), module->name);
}

BOOL FreeLibrary(HMODULE module) {
  Call call(CallId::FreeLibrary);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  const auto loaded = sim::FindLoaded(call, module);
  if (loaded == call.process().modules.end()) {
    call.Misuse("was given a library that is not loaded");
    return call.Fail(ERROR_INVALID_HANDLE, FALSE);
  }
  if (--loaded->second > 0) return TRUE;
  call.Log(Effect::kModule, loaded->first + " freed");
  call.process().modules.erase(loaded);
  return TRUE;
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
  const sim::Module* found = call.kernel().FindModule(loaded->first);
  if (found == nullptr) return call.Fail<FARPROC>(ERROR_PROC_NOT_FOUND, nullptr);
  const auto entry = found->entries.find(sim::ToUtf8(name));
  if (entry == found->entries.end()) return call.Fail<FARPROC>(ERROR_PROC_NOT_FOUND, nullptr);
  return entry->second;
}

DWORD GetModuleFileNameW(HMODULE /*module*/, LPWSTR /*name*/, DWORD /*units*/) {
  return sim::NotSimulated(sim::CallId::GetModuleFileNameW, DWORD{0});
}
