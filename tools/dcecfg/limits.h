// What the device takes: how long texts may be, and which indexes stand for a key.
#ifndef TOOLS_DCECFG_LIMITS_H_
#define TOOLS_DCECFG_LIMITS_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "configstore/dcecfg_parser.h"
#include "tools/dcecfg/syntax.h"

namespace dcecfg {

constexpr std::size_t kMaxFileSize = pal::CDCECFGParser::kBufferSize - 1;
constexpr std::size_t kMaxValues = pal::CDCECFGParser::kMaxRecords;
constexpr LONG kMinDword = -32768;
constexpr LONG kMaxDword = 32767;

// What is wrong and what would do; nothing where all is well.
using Fault = std::optional<std::string>;

[[nodiscard]] Fault FaultOfLiteralKey(std::string_view key);
[[nodiscard]] Fault FaultOfValueName(std::string_view name);
[[nodiscard]] Fault FaultOfText(std::string_view text);
[[nodiscard]] Fault FaultOfHexadecimal(std::string_view digits);

// The full key and value name behind an index of the direct section, "KEY:NAME"; nothing where the
// device knows none.
[[nodiscard]] std::optional<std::string> IndexedKeyName(unsigned index);
// How many indexes the device takes, counted from 0.
[[nodiscard]] unsigned IndexedKeyCount();
[[nodiscard]] unsigned BlockCount(Context context);  // kPorts or kDevices

}  // namespace dcecfg

#endif  // TOOLS_DCECFG_LIMITS_H_
