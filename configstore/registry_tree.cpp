#include "configstore/registry_tree.h"

#include <utility>

#include "frame/registry.h"
#include "frame/unique_handle.h"

namespace pal {
namespace {

struct KeyName {
  WCHAR text[MAX_PATH];
};

LONG FirstSubkey(HKEY key, KeyName& name) {
  DWORD units = MAX_PATH;
  return RegEnumKeyExW(key, 0, name.text, &units, nullptr, nullptr, nullptr, nullptr);
}

// Walks down to the first key without subkeys and deletes it; ERROR_NO_MORE_ITEMS where the tree's
// own key has none left. A walk for each key instead of recursion takes the same stack however deep
// the tree is.
LONG DeleteFirstLeaf(HKEY root, const WCHAR* path) {
  UniqueRegistryKey parent;
  LONG error = OpenRegistryKey(root, path, KEY_ALL_ACCESS, parent);
  if (error != ERROR_SUCCESS) return error;
  KeyName names[2];
  KeyName* name = &names[0];
  KeyName* next = &names[1];
  error = FirstSubkey(parent.get(), *name);
  while (error == ERROR_SUCCESS) {
    UniqueRegistryKey child;
    error = OpenRegistryKey(parent.get(), name->text, KEY_ALL_ACCESS, child);
    if (error != ERROR_SUCCESS) return error;
    error = FirstSubkey(child.get(), *next);
    if (error == ERROR_NO_MORE_ITEMS) {
      child.Reset();
      return RegDeleteKeyW(parent.get(), name->text);
    }
    parent = std::move(child);
    std::swap(name, next);
  }
  return error;
}

}  // namespace

void DeleteRegistryTree(HKEY root, const WCHAR* path) {
  LONG error = ERROR_SUCCESS;
  while (error == ERROR_SUCCESS) error = DeleteFirstLeaf(root, path);
  if (error == ERROR_NO_MORE_ITEMS) RegDeleteKeyW(root, WithoutLeadingBackslash(path));
}

}  // namespace pal
