#include <iterator>

#include "frame/registry.h"
#include "frame/text.h"
#include "sysinfo/identity/fallbacks.h"

namespace pal {

std::string_view ReadIdentityRegistry(const WCHAR* name, IdentityRegistryText& buffer) {
  UniqueRegistryKey key;
  if (OpenRegistryKey(HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\DVLHWID"), KEY_QUERY_VALUE,
                      key) != ERROR_SUCCESS) {
    return {};
  }
  WCHAR wide[std::size(IdentityRegistryText{})];
  StoredValue stored;
  if (ReadText(key, name, wide, &stored) != ERROR_SUCCESS || stored.type != REG_SZ) return {};
  const WideText text(wide);
  return Narrow(buffer, text) ? std::string_view(buffer, text.size()) : std::string_view();
}

}  // namespace pal
