#include <array>
#include <optional>
#include <span>

#include "configstore/registry_file.h"
#include "configstore/registry_tree.h"
#include "frame/registry.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "frame/unique_handle.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kRegistryFile};

// One REG_DWORD for each file that was imported, under the file's name.
constexpr const WCHAR* kChecksumStore = TEXT("\\Software\\Dravonel\\REGCHKSUMS");
constexpr const WCHAR* kImporter = TEXT("\\Windows\\orqautoreg.exe");
constexpr DWORD kImportTimeoutMs = 120000;

// What a full import replaces, in the order of deletion. Three names end in a blank on purpose: the
// trees that they seem to name stay.
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

bool BuildPath(std::span<WCHAR> path, const WCHAR* directory, const WCHAR* file_name) {
  return Copy(path, directory) && Append(path, TEXT("\\")) && Append(path, file_name);
}

// A value of another type or size is none.
std::optional<DWORD> StoredChecksum(HKEY store, const WCHAR* file_name) {
  DWORD checksum = 0;
  DWORD type = REG_NONE;
  DWORD bytes = sizeof(checksum);
  const LONG error = RegQueryValueExW(store, file_name, nullptr, &type,
                                      reinterpret_cast<BYTE*>(&checksum), &bytes);
  const bool counts = error == ERROR_SUCCESS && type == REG_DWORD && bytes == sizeof(checksum);
  return counts ? std::optional<DWORD>(checksum) : std::nullopt;
}

bool IsUnchanged(HKEY store, const WCHAR* file_name, DWORD checksum) {
  const std::optional<DWORD> stored = StoredChecksum(store, file_name);
  if (!stored) return false;
  kTrace.Info("PALInitCheckAndLoadRegFile: %ls saved: 0x%x, calcd: 0x%x.", file_name, *stored,
              checksum);
  if (*stored != checksum) return false;
  kTrace.Info("PALInitCheckAndLoadRegFile: Checksum equal. Not applying %ls", file_name);
  return true;
}

// Runs the importer to its end. How it ended is not looked at; a wait that fails is as good as one
// that timed out: nobody knows whether the import is done.
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

// `store` may be none, where the key could not be created.
void StoreChecksum(const UniqueRegistryKey& store, const WCHAR* file_name, DWORD checksum) {
  kTrace.Info("PALInitCheckAndLoadRegFile: Writing %ls checksum:0x%x", file_name, checksum);
  const bool is_written = store && RegSetValueExW(store.get(), file_name, 0, REG_DWORD,
                                                  reinterpret_cast<const BYTE*>(&checksum),
                                                  sizeof(checksum)) == ERROR_SUCCESS;
  if (is_written) return;
  kTrace.Error("PALInitCheckAndLoadRegFile: Error writing %ls checksum", file_name);
}

}  // namespace

HRESULT PALInitCheckAndLoadRegFile(const WCHAR* directory, const WCHAR* file_name,
                                   DWORD clear_trees) {
  WCHAR path[MAX_PATH];
  if (!BuildPath(path, directory, file_name)) return E_FAIL;
  const DWORD checksum = PALInitChecksumFile(path);

  // Without the store every call imports; that its checksum is lost is said when it is written.
  UniqueRegistryKey store;
  static_cast<void>(CreateRegistryKey(HKEY_LOCAL_MACHINE, kChecksumStore, store));
  if (store && IsUnchanged(store.get(), file_name, checksum)) return S_OK;

  if (clear_trees != 0) {
    for (const WCHAR* const tree : kReplacedTrees) {
      DeleteRegistryTree(HKEY_LOCAL_MACHINE, tree);
    }
  }
  const HRESULT result = Import(path, file_name);
  if (result == S_OK) StoreChecksum(store, file_name, checksum);
  return result;
}

}  // namespace pal
