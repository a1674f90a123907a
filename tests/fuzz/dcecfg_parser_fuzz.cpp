// A fuzz target of the configuration-store parser: whatever the bytes, what comes out is whole.
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "configstore/dcecfg_parser.h"
#include "frame/trace.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// Data that end inside a DSCP block were traced; the parse must then fail.
bool ended_in_block = false;

template <std::size_t kSize>
void RequireTerminated(const char (&field)[kSize]) {
  Require(std::memchr(field, '\0', kSize) != nullptr);
}

void RequireWhole(const pal::DcecfgKeyRecord& record) {
  RequireTerminated(record.key_path);
  RequireTerminated(record.value_name);
  RequireTerminated(record.value_text);
  Require(record.binary_length <= 64);
  Require(std::string_view(record.key_path).starts_with("HKEY"));
  Require(std::strchr(record.key_path, '\\') != nullptr);
  Require(record.type <= pal::DcecfgValueType::kDword);
}

struct Parse {
  HRESULT result;
  DWORD count;
  DWORD offset;
  std::size_t records;  // a hash
  bool operator==(const Parse&) const = default;
};

std::size_t HashOf(const pal::DcecfgKeyRecord& record) {
  const auto text = [](const char* field) { return std::hash<std::string_view>()(field); };
  const std::string_view binary(reinterpret_cast<const char*>(record.binary), record.binary_length);
  return text(record.key_path) + 3 * text(record.value_name) + 5 * text(record.value_text) +
         7 * std::hash<std::string_view>()(binary) + static_cast<DWORD>(record.dword) +
         static_cast<DWORD>(record.type);
}

Parse ParseAgain(pal::CDCECFGParser& parser) {
  Parse parse = {parser.ParseFile(), parser.record_count(), parser.offset(), 0};
  for (const pal::DcecfgKeyRecord& record : parser.records()) {
    RequireWhole(record);
    parse.records = 31 * parse.records + HashOf(record);
  }
  return parse;
}

// Reads each argument as the format prints it.
void RequireArguments(const char* format, va_list arguments) {
  while ((format = std::strchr(format, '%')) != nullptr) {
    if (*++format == 's') {
      Require(std::strlen(va_arg(arguments, const char*)) < pal::CDCECFGParser::kBufferSize);
    } else {
      static_cast<void>(va_arg(arguments, DWORD));
    }
  }
}

}  // namespace

// Takes the place of the library's: walks the arguments by the format, so that a text without an
// end is found, and formats nothing.
DWORD pal::PALTrace(DWORD /*debug_echo*/, DWORD category, const char* format, ...) {
  Require((category & 0x3FFFFFFF) ==
          pal::TraceCategory(pal::Facility::kConfigStore, pal::Severity::kPlain));
  if (std::string_view(format).starts_with("Abnormal")) ended_in_block = true;
  va_list arguments;
  va_start(arguments, format);
  RequireArguments(format, arguments);
  va_end(arguments);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto reused = std::make_unique<pal::CDCECFGParser>();
  pal::CDCECFGParser& parser = *reused;
  const HRESULT loaded = parser.Load(std::span<const BYTE>(data, size));
  Require((loaded == S_OK) == (size < pal::CDCECFGParser::kBufferSize));
  Require(parser.record_count() == 0);

  ended_in_block = false;
  const Parse parse = ParseAgain(parser);
  if (ended_in_block) Require(parse.result == E_FAIL);
  Require(parse.result == S_OK || parse.result == E_FAIL);
  Require(parse.count <= pal::CDCECFGParser::kMaxRecords && parse.count == parser.records().size());
  Require(parse.offset == (loaded == S_OK ? size : 0));
  if (loaded != S_OK) Require(parse.result == S_OK && parse.count == 0);

  // The same bytes give the same records, whatever stood in the parser before.
  Require(ParseAgain(parser) == parse);
  return 0;
}
