// The names of the registry's root keys.
#ifndef FRAME_REGISTRY_ROOT_H_
#define FRAME_REGISTRY_ROOT_H_

#include <algorithm>
#include <array>
#include <string_view>

namespace pal {

// In the order in which a name is tested against them.
inline constexpr std::array<std::string_view, 4> kRegistryRootNames = {
    "HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER", "HKEY_CLASSES_ROOT", "HKEY_USERS"};

// The index of the root name that `path` begins with; the size of the table where there is none.
constexpr size_t FindRegistryRoot(std::string_view path) {
  const auto* const root = std::ranges::find_if(
      kRegistryRootNames, [path](std::string_view name) { return path.starts_with(name); });
  return static_cast<size_t>(root - kRegistryRootNames.begin());
}

}  // namespace pal

#endif  // FRAME_REGISTRY_ROOT_H_
