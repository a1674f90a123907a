#include <array>
#include <optional>
#include <span>
#include <utility>

#include "configstore/registry_file.h"
#include "frame/registry.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kRegistryFile};

// Has a REG_DWORD with the checksum for each imported file, under the file's name.
constexpr const WCHAR* kChecksumStore = TEXT("\\Software\\Dravonel\\REGCHKSUMS");
constexpr const WCHAR* kImporter = TEXT("\\Windows\\orqautoreg.exe");
constexpr DWORD kImportTimeoutMs = 120000;

// The trees that a full import replaces, in the order of deletion. Three names end in a blank, on
// purpose: no tree is deleted for them.
constexpr std::array<const WCHAR*, 12> kReplacedTrees = {
    TEXT("\\Software\\Dravonel\\ADCDevices "),
    TEXT("\\Software\\Dravonel\\ADCGroupConfig"),
    TEXT("\\Software\\Dravonel\\ADCGroups"),
    TEXT("\\Software\\Dravonel\\ADCPorts "),
    TEXT("\\Software\\Dravonel\\DataServer "),
    TEXT("\\Software\\Dravonel\\Decodes"),
    TEXT("\\Software\\Dravonel\\Drivers"),
    TEXT("\\Software\\Dravonel\\RUM"),
    TEXT("\\Software\\Dravonel\\SRAutoLaunch"),
    TEXT("\\Software\\Dravonel\\SRConfigCommands"),
    TEXT("\\Software\\Dravonel\\SRRegComComponents"),
    TEXT("\\Software\\Dravonel\\VersionedFiles"),
};

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

// Deletes a key with all below it. Stops at the first key that cannot be opened, listed or deleted,
// and then leaves it with all above it. A key that is missing is no error.
void DeleteRegistryTree(const WCHAR* path) {
  LONG error = ERROR_SUCCESS;
  while (error == ERROR_SUCCESS) error = DeleteFirstLeaf(HKEY_LOCAL_MACHINE, path);
  if (error == ERROR_NO_MORE_ITEMS) {
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, WithoutLeadingBackslash(path));
  }
}

bool BuildPath(std::span<WCHAR> path, const WCHAR* directory, const WCHAR* file_name) {
  return Copy(path, directory) && Append(path, TEXT("\\")) && Append(path, file_name);
}

// A value of another type or size is no checksum.
std::optional<DWORD> StoredChecksum(const UniqueRegistryKey& store, const WCHAR* file_name) {
  DWORD checksum = 0;
  StoredValue stored;
  const LONG error = ReadNumber(store, file_name, checksum, &stored);
  const bool counts =
      error == ERROR_SUCCESS && stored.type == REG_DWORD && stored.bytes == sizeof(checksum);
  return counts ? std::optional<DWORD>(checksum) : std::nullopt;
}

bool IsUnchanged(const UniqueRegistryKey& store, const WCHAR* file_name, DWORD checksum) {
  const std::optional<DWORD> stored = StoredChecksum(store, file_name);
  if (!stored) return false;
  kTrace.Info("PALInitCheckAndLoadRegFile: %ls saved: 0x%x, calcd: 0x%x.", file_name, *stored,
              checksum);
  if (*stored != checksum) return false;
  kTrace.Info("PALInitCheckAndLoadRegFile: Checksum equal. Not applying %ls", file_name);
  return true;
}

// Runs the importer and waits for its end. Its exit code does not matter. A wait that fails counts
// as a time-out: it is not known whether the import is done.
HRESULT Import(const WCHAR* path, const WCHAR* file_name) {
  kTrace.Info("PALInitCheckAndLoadRegFile: Importing %ls", path);
  PROCESS_INFORMATION started = {};
  if (!CreateProcessW(kImporter, path, nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr,
                      &started)) {
    kTrace.Error("PALInitCheckAndLoadRegFile: Failed to run %ls, GetLastErr:0x%X", kImporter,
                 GetLastError());
    return E_FAIL;
  }
  const UniqueProcess process(started.hProcess);
  const UniqueThread thread(started.hThread);
  if (WaitForSingleObject(process.get(), kImportTimeoutMs) != WAIT_OBJECT_0) {
    kTrace.Error("PALInitCheckAndLoadRegFile: %ls timeout %d msec waiting for autoreg.exe",
                 file_name, kImportTimeoutMs);
    return E_FAIL;
  }
  return S_OK;
}

// `store` is empty where the key could not be created.
void StoreChecksum(const UniqueRegistryKey& store, const WCHAR* file_name, DWORD checksum) {
  kTrace.Info("PALInitCheckAndLoadRegFile: Writing %ls checksum:0x%x", file_name, checksum);
  if (store && WriteNumber(store, file_name, checksum) == ERROR_SUCCESS) return;
  kTrace.Error("PALInitCheckAndLoadRegFile: Error writing %ls checksum", file_name);
}

}  // namespace

HRESULT PALInitCheckAndLoadRegFile(const WCHAR* directory, const WCHAR* file_name,
                                   DWORD clear_trees) {
  WCHAR path[MAX_PATH];
  if (!BuildPath(path, directory, file_name)) return E_FAIL;
  const DWORD checksum = PALInitChecksumFile(path);

  // Without the store each call imports; StoreChecksum traces that the checksum is lost.
  UniqueRegistryKey store;
  static_cast<void>(CreateRegistryKey(HKEY_LOCAL_MACHINE, kChecksumStore,
                                      KEY_QUERY_VALUE | KEY_SET_VALUE, store));
  if (store && IsUnchanged(store, file_name, checksum)) return S_OK;

  if (clear_trees != 0) {
    for (const WCHAR* const tree : kReplacedTrees) DeleteRegistryTree(tree);
  }
  const HRESULT result = Import(path, file_name);
  if (result == S_OK) StoreChecksum(store, file_name, checksum);
  return result;
}

}  // namespace pal
