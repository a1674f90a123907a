#include <array>
#include <string_view>

#include "configstore/dcecfg_format.h"
#include "configstore/dcecfg_parser.h"
#include "frame/text.h"

namespace pal {

using dcecfg::kTrace;

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
  using namespace dcecfg;
  return byte == kStringKey || byte == kDwordKey || byte == kBinaryKey;
}

DcecfgValueType TypeOfMarker(BYTE marker) {
  if (marker == dcecfg::kStringKey) return DcecfgValueType::kString;
  if (marker == dcecfg::kDwordKey) return DcecfgValueType::kDword;
  return DcecfgValueType::kBinary;
}

[[nodiscard]] bool SetKey(DcecfgKeyRecord& record, const IndexedKey& key) {
  const bool has_root = dcecfg::HasRoot(key.key);
  return Copy(record.key_path, has_root ? "" : dcecfg::kBaseKey) &&
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

}  // namespace

// Faulty entries leave the section's result alone: it has none.
void CDCECFGParser::ParseDirectSection() {
  reader_.Advance();
  kTrace.Plain("Entry Parsing direct registry section...");
  while (!reader_.ended()) {
    ParseDirectEntry();
    if (reader_.At(dcecfg::kEndOfSection)) break;
  }
  kTrace.Plain(" Exit Parsing direct registry section...");
  reader_.Advance();
}

void CDCECFGParser::ParseDirectEntry() {
  DcecfgKeyRecord record = {};
  const BYTE first = reader_.ReadByte();
  const Key key =
      IsLiteralMarker(first) ? ReadLiteralKey(first, record) : ReadIndexedKey(first, record);
  if (key == Key::kNone || reader_.ended()) {
    reader_.Advance();
    kTrace.Error("No key processed.");
    return;
  }
  if (!ReadDirectValue(record) || key == Key::kMisfit) return;
  if (record.type == DcecfgValueType::kDword) {
    kTrace.Info("Value = %d", record.dword);
  } else {
    kTrace.Info("Value = %s", record.value_text);
  }
  AddRecord(record);
}

CDCECFGParser::Key CDCECFGParser::ReadLiteralKey(BYTE marker, DcecfgKeyRecord& record) {
  record.type = TypeOfMarker(marker);
  if (reader_.ended()) {
    kTrace.Error("Unexpected end of file");
    return Key::kNone;
  }
  const auto text = reader_.ReadString();
  if (!text) {
    kTrace.Error("End of file before end of string");
    return Key::kNone;
  }
  if (text->size() > kMaxLiteralKeyLength || !SetKey(record, SplitLiteralKey(*text))) {
    dcecfg::TraceTooLong();
    return Key::kMisfit;
  }
  if (const std::string_view path = record.key_path; Find(path, '\\') == path.size()) {
    kTrace.Error("Key %s names no key below its root. Entry skipped.", record.key_path);
    return Key::kMisfit;
  }
  kTrace.Info("Literal Key %s : %s type %d found", record.key_path, record.value_name, record.type);
  return Key::kFilled;
}

CDCECFGParser::Key CDCECFGParser::ReadIndexedKey(BYTE index, DcecfgKeyRecord& record) {
  record.type = DcecfgValueType::kDword;
  if (index >= kIndexedKeys.size() || !SetKey(record, kIndexedKeys[index])) {
    kTrace.Error("Index %d out of bounds", index);
    return Key::kNone;
  }
  kTrace.Info("Indexed Key %s : %s type %d found", record.key_path, record.value_name, record.type);
  return Key::kFilled;
}

// False where the value has no end or does not fit.
bool CDCECFGParser::ReadDirectValue(DcecfgKeyRecord& record) {
  if (record.type == DcecfgValueType::kDword) {
    record.dword = reader_.ReadNumber();
    return true;
  }
  const bool binary = record.type == DcecfgValueType::kBinary;
  const Text read = binary ? ReadHexadecimal(record) : ReadValueText(record);
  if (read == Text::kNoEnd) kTrace.Error("End of file before end of string");
  return read == Text::kRead;
}

}  // namespace pal
