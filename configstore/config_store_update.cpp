#include "configstore/config_store_update.h"

#include <charconv>
#include <cstring>
#include <iterator>
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

struct RegistryData {
  DWORD type;
  const void* bytes;
  size_t size;
};

// A string is stored as the 8-bit text that it is, without a terminator. That is kept on purpose:
// its readers expect it so.
RegistryData DataOf(const DcecfgKeyRecord& record) {
  switch (record.type) {
    case DcecfgValueType::kString:
      return {REG_SZ, record.value_text, std::strlen(record.value_text)};
    case DcecfgValueType::kDword:
      return {REG_DWORD, &record.dword, sizeof(record.dword)};
    case DcecfgValueType::kBinary:
      break;
  }
  return {REG_BINARY, record.binary, record.binary_length};
}

// The root is closed like any key, though it was not opened: the platform ignores that.
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
  if (CreateRegistryKey(root.get(), path, key) != ERROR_SUCCESS) return;
  const RegistryData data = DataOf(record);
  RegSetValueExW(key.get(), name, 0, data.type, static_cast<const BYTE*>(data.bytes),
                 static_cast<DWORD>(data.size));
}

void TraceValue(const DcecfgKeyRecord& record) {
  char decimal[12] = {};
  const char* text = record.value_text;
  if (record.type == DcecfgValueType::kDword) {
    std::to_chars(decimal, std::end(decimal) - 1, record.dword);
    text = decimal;
  }
  kTrace.Info("%s:%s=%s", record.key_path, record.value_name, text);
}

HRESULT UpdateRegistry() {
  const std::unique_ptr<CDCECFGParser> parser(new (std::nothrow_t{}) CDCECFGParser);
  if (parser == nullptr) return S_OK;
  HRESULT result = parser->Load();
  if (Succeeded(result)) result = parser->ParseFile();
  if (Failed(result)) return result;
  if (parser->record_count() > 0) {
    kTrace.Info("Setting %d registry keys from Config Store.", parser->record_count());
  }
  for (const DcecfgKeyRecord& record : parser->records()) {
    WriteValue(record);
    TraceValue(record);
  }
  return result;
}

}  // namespace

HRESULT ConfigStoreRegUpdate() {
  kTrace.Info("Entry ConfigStoreRegUpdate()");
  const HRESULT result = UpdateRegistry();
  kTrace.Info("Exit ConfigStoreRegUpdate()");
  return result;
}

}  // namespace pal

HRESULT PALAPI PALMFGOpt_ConfigStoreRegUpdate() {
  pal::kTrace.Info("Entry PALMFGOpt_ConfigStoreRegUpdate");
  static_cast<void>(pal::ConfigStoreRegUpdate());
  pal::kTrace.Info("Exit PALMFGOpt_ConfigStoreRegUpdate");
  return S_OK;
}
