// Writing the settings of the configuration store to the registry.
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include "configstore/dcecfg_parser.h"
#include "frame/registry.h"
#include "frame/result.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "include/palmfgopt.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kConfigStore};

// A string is stored as 8-bit text without a terminator: the data-collection stack reads it so.
LONG WriteData(const UniqueRegistryKey& key, const WCHAR* name, const DcecfgKeyRecord& record) {
  switch (record.type) {
    case DcecfgValueType::kString: {
      const auto* const text = reinterpret_cast<const BYTE*>(record.value_text);
      return WriteBytes(key, name, {text, std::strlen(record.value_text)}, REG_SZ);
    }
    case DcecfgValueType::kDword:
      return WriteNumber(key, name, static_cast<DWORD>(record.dword));
    case DcecfgValueType::kBinary:
      break;
  }
  return WriteBytes(key, name, {record.binary, record.binary_length});
}

// The root is closed like any key, although it was not opened; the platform ignores this.
void WriteValue(const DcecfgKeyRecord& record) {
  std::string_view path_below_root = record.key_path;
  const size_t root_length = Find(path_below_root, '\\');
  if (root_length == path_below_root.size()) return;
  path_below_root.remove_prefix(root_length + 1);
  WCHAR path[256];
  WCHAR name[64];
  if (!Widen(path, path_below_root) || !Widen(name, record.value_name)) return;

  const UniqueRegistryKey root(PALRegRootFromName(record.key_path));
  UniqueRegistryKey key;
  if (CreateRegistryKey(root.get(), path, KEY_SET_VALUE, key) != ERROR_SUCCESS) return;
  static_cast<void>(WriteData(key, name, record));  // a failed write is not reported
}

void TraceValue(const DcecfgKeyRecord& record) {
  if (record.type == DcecfgValueType::kDword) {
    kTrace.Info("%s:%s=%d", record.key_path, record.value_name, record.dword);
  } else {
    kTrace.Info("%s:%s=%s", record.key_path, record.value_name, record.value_text);
  }
}

// Where there is no memory for the parser nothing is written, and this is no failure.
void UpdateRegistry() {
  const std::unique_ptr<CDCECFGParser> parser(new (std::nothrow_t{}) CDCECFGParser);
  if (parser == nullptr || Failed(parser->Load()) || Failed(parser->ParseFile())) return;
  if (parser->record_count() > 0) {
    kTrace.Info("Setting %d registry keys from Config Store.", parser->record_count());
  }
  for (const DcecfgKeyRecord& record : parser->records()) {
    WriteValue(record);
    TraceValue(record);
  }
}

void ConfigStoreRegUpdate() {
  kTrace.Info("Entry ConfigStoreRegUpdate()");
  UpdateRegistry();
  kTrace.Info("Exit ConfigStoreRegUpdate()");
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALMFGOpt_ConfigStoreRegUpdate() {
  pal::kTrace.Info("Entry PALMFGOpt_ConfigStoreRegUpdate");
  pal::ConfigStoreRegUpdate();
  pal::kTrace.Info("Exit PALMFGOpt_ConfigStoreRegUpdate");
  return S_OK;
}
