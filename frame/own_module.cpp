#include "frame/own_module.h"

namespace pal {
namespace {

// Written once, before anything else of the library runs in the process.
constinit HMODULE own_module = nullptr;

}  // namespace

void SetOwnModule(HMODULE module) {
  own_module = module;
}

HMODULE OwnModule() {
  return own_module;
}

// By its path and not by its name, which another library may have too.
UniqueModule HoldOwnModule() {
  WCHAR path[MAX_PATH] = {};
  const DWORD units = GetModuleFileNameW(own_module, path, MAX_PATH);
  if (units == 0 || units >= MAX_PATH) return {};
  UniqueModule module(LoadLibraryW(path));
  if (module.get() != own_module) return {};
  return module;
}

}  // namespace pal
