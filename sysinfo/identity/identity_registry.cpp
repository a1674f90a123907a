#include "sysinfo/identity/identity_registry.h"

#include <iterator>

#include "frame/registry.h"
#include "frame/text.h"

namespace pal {

std::string_view ReadIdentityRegistry(const WCHAR* name, IdentityRegistryText& buffer) {
  UniqueRegistryKey key;
  LONG error = OpenRegistryKey(HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\DVLHWID"),
                               KEY_QUERY_VALUE, key);
  if (error != ERROR_SUCCESS) return {};
  WCHAR stored[64] = {};
  DWORD type = REG_NONE;
  DWORD bytes = sizeof(stored);
  error =
      RegQueryValueExW(key.get(), name, nullptr, &type, reinterpret_cast<BYTE*>(stored), &bytes);
  if (error != ERROR_SUCCESS || type != REG_SZ) return {};
  const WideText text(stored, Length<WCHAR>(stored));
  static_assert(sizeof(buffer) > std::size(stored));
  return Narrow(buffer, text) ? std::string_view(buffer, text.size()) : std::string_view();
}

}  // namespace pal
