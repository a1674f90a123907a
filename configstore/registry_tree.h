// Deleting a registry key with all below it.
#ifndef CONFIGSTORE_REGISTRY_TREE_H_
#define CONFIGSTORE_REGISTRY_TREE_H_

#include "platform/wince.h"

namespace pal {

// A key that is missing is no error. Stops at the first key that cannot be opened, listed or
// deleted, and then leaves it with all above it.
void DeleteRegistryTree(HKEY root, const WCHAR* path);

}  // namespace pal

#endif  // CONFIGSTORE_REGISTRY_TREE_H_
