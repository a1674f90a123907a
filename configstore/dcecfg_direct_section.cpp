#include <array>
#include <string_view>

#include "configstore/dcecfg_format.h"
#include "configstore/dcecfg_sections.h"
#include "frame/text.h"

namespace pal::dcecfg {
namespace {

struct IndexedKey {
  std::string_view key;
  std::string_view value_name;
};

constexpr std::array<IndexedKey, 9> kIndexedKeys = {{
    {"Decodes", "ThreadPriority"},
    {"DCEDriver", "AsyncReadThreadPriority"},
    {"DCEDriver", "BeepThreadPriority"},
    {R"(HKEY_LOCAL_MACHINE\Drivers\Dravonel\EA1)", "ImagerISTPriority"},
    {R"(HKEY_LOCAL_MACHINE\Drivers\Dravonel\EA1)", "ImagerNRTPriority"},
    {R"(HKEY_LOCAL_MACHINE\Drivers\Dravonel\EA2)", "ImagerISTPriority"},
    {R"(HKEY_LOCAL_MACHINE\Drivers\Dravonel\EA2)", "ImagerNRTPriority"},
    {R"(HKEY_LOCAL_MACHINE\Drivers\Dravonel\EAC)", "ImagerISTPriority"},
    {R"(HKEY_LOCAL_MACHINE\Drivers\Dravonel\EAC)", "ImagerNRTPriority"},
}};

constexpr size_t kMaxLiteralKeyLength = 255;

bool IsLiteralMarker(BYTE byte) {
  return byte == kStringKey || byte == kDwordKey || byte == kBinaryKey;
}

DcecfgValueType TypeOfMarker(BYTE marker) {
  if (marker == kStringKey) return DcecfgValueType::kString;
  return marker == kDwordKey ? DcecfgValueType::kDword : DcecfgValueType::kBinary;
}

[[nodiscard]] bool SetKey(DcecfgKeyRecord& record, const IndexedKey& key) {
  return Copy(record.key_path, HasRoot(key.key) ? "" : kBaseKey) &&
         Append(record.key_path, key.key) && Copy(record.value_name, key.value_name);
}

// The value name stands behind the first ':' and may be empty there.
IndexedKey SplitLiteralKey(std::string_view text) {
  const size_t colon = Find(text, ':');
  if (colon == text.size()) return {text, "Default"};
  IndexedKey split = {text, text};
  split.key.remove_suffix(text.size() - colon);
  split.value_name.remove_prefix(colon + 1);
  return split;
}

Key ReadLiteralKey(DcecfgReader& reader, BYTE marker, DcecfgKeyRecord& record) {
  record.type = TypeOfMarker(marker);
  if (reader.ended()) {
    kTrace.Error("Unexpected end of file");
    return Key::kNone;
  }
  const auto text = reader.ReadString();
  if (!text) {
    kTrace.Error("End of file before end of string");
    return Key::kNone;
  }
  if (text->size() > kMaxLiteralKeyLength || !SetKey(record, SplitLiteralKey(*text))) {
    TraceTooLong();
    return Key::kMisfit;
  }
  if (const std::string_view path = record.key_path; Find(path, '\\') == path.size()) {
    kTrace.Error("Key %s names no key below its root. Entry skipped.", record.key_path);
    return Key::kMisfit;
  }
  kTrace.Info("Literal Key %s : %s type %d found", record.key_path, record.value_name, record.type);
  return Key::kFilled;
}

Key ReadIndexedKey(BYTE index, DcecfgKeyRecord& record) {
  record.type = DcecfgValueType::kDword;
  if (index >= kIndexedKeys.size() || !SetKey(record, kIndexedKeys[index])) {
    kTrace.Error("Index %d out of bounds", index);
    return Key::kNone;
  }
  kTrace.Info("Indexed Key %s : %s type %d found", record.key_path, record.value_name, record.type);
  return Key::kFilled;
}

// False where the value has no end or does not fit.
bool ReadValue(DcecfgReader& reader, DcecfgKeyRecord& record) {
  if (record.type == DcecfgValueType::kDword) {
    record.dword = reader.ReadNumber();
    return true;
  }
  const bool is_binary = record.type == DcecfgValueType::kBinary;
  const Text read = is_binary ? ReadHexadecimal(reader, record) : ReadValueText(reader, record);
  if (read == Text::kNoEnd) kTrace.Error("End of file before end of string");
  return read == Text::kRead;
}

void ParseEntry(DcecfgReader& reader, DcecfgRecords& records) {
  DcecfgKeyRecord record = {};
  const BYTE first = reader.ReadByte();
  const Key key = IsLiteralMarker(first) ? ReadLiteralKey(reader, first, record)
                                         : ReadIndexedKey(first, record);
  if (key == Key::kNone || reader.ended()) {
    reader.Advance();
    kTrace.Error("No key processed.");
    return;
  }
  if (!ReadValue(reader, record) || key == Key::kMisfit) return;
  if (record.type == DcecfgValueType::kDword) {
    kTrace.Info("Value = %d", record.dword);
  } else {
    kTrace.Info("Value = %s", record.value_text);
  }
  records.Add(record);
}

}  // namespace

// The section has no result of its own: faulty entries do not fail it.
void ParseDirectSection(DcecfgReader& reader, DcecfgRecords& records) {
  reader.Advance();
  kTrace.Plain("Entry Parsing direct registry section...");
  while (!reader.ended()) {
    ParseEntry(reader, records);
    if (reader.At(kEndOfSection)) break;
  }
  kTrace.Plain(" Exit Parsing direct registry section...");
  reader.Advance();
}

}  // namespace pal::dcecfg
