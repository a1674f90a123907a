#include "tools/dcecfg/limits.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "configstore/dcecfg_format.h"
#include "frame/registry_root.h"
#include "tools/dcecfg/check.h"
#include "tools/dcecfg/quote.h"

namespace dcecfg {
namespace {

constexpr std::size_t kMaxLiteralKey = 255;
constexpr std::size_t kMaxKeyPath = sizeof(pal::DcecfgKeyRecord::key_path) - 1;
constexpr std::size_t kMaxValueName = sizeof(pal::DcecfgKeyRecord::value_name) - 1;
constexpr std::size_t kMaxText = sizeof(pal::DcecfgKeyRecord::value_text) - 1;
constexpr std::size_t kMaxBinary = 64;

bool IsHexadecimalDigit(char digit) {
  return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f') ||
         (digit >= 'A' && digit <= 'F');
}

// The device takes a path that begins with HKEY as it is.
Fault FaultOfRoot(std::string_view path) {
  const std::size_t end = path.find('\\');
  const auto& roots = pal::kRegistryRootNames;
  if (std::find(roots.begin(), roots.end(), path.substr(0, end)) == roots.end()) {
    return fmt::format("{} is no root; the roots are {}", Escape(path.substr(0, end)),
                       fmt::join(roots, ", "));
  }
  if (end != std::string_view::npos) return std::nullopt;
  return R"(no key below the root stands in front of the colon: "HKEY_...\\KEY:NAME")";
}

// The names of the keys that the indexes from 0 up stand for, asked of the library's parser with a
// small file for each.
template <typename FileOf>
std::vector<std::string> KeyNames(FileOf file_of) {
  std::vector<std::string> names;
  for (unsigned index = 0; index <= 0xFF; ++index) {
    const auto name = OnlyKeyOf(file_of(static_cast<BYTE>(index)));
    if (!name) break;
    names.push_back(*name);
  }
  return names;
}

const std::vector<std::string>& IndexedKeys() {
  using namespace pal::dcecfg;
  static const auto names = KeyNames([](BYTE index) {
    return std::array<BYTE, 5>{kDirectSection, index, 0, 0, kEndOfSection};
  });
  return names;
}

unsigned CountBlocks(BYTE subsection) {
  using namespace pal::dcecfg;
  const auto names = KeyNames([subsection](BYTE index) {
    return std::array<BYTE, 9>{kDscpSection, subsection,       index,        'A', 0, 0,
                               kEndOfBlock,  kEndOfSubsection, kEndOfSection};
  });
  return static_cast<unsigned>(names.size());
}

}  // namespace

Fault FaultOfLiteralKey(std::string_view key) {
  const std::string_view path = key.substr(0, key.find(':'));
  const bool has_root = path.starts_with("HKEY");
  const std::size_t path_length = path.size() + (has_root ? 0 : pal::dcecfg::kBaseKey.size());
  if (key.starts_with(':')) return "the colon stands in front of the value name: \"KEY:NAME\"";
  if (key.empty()) return "a key is missing: \"KEY:NAME\"";
  if (has_root) {
    if (Fault fault = FaultOfRoot(path)) return fault;
  }
  if (key.size() > kMaxLiteralKey) {
    return fmt::format("{} characters of key and value name; at most {} fit", key.size(),
                       kMaxLiteralKey);
  }
  if (path_length > kMaxKeyPath) {
    return fmt::format("the key's full path has {} characters; at most {} fit", path_length,
                       kMaxKeyPath);
  }
  return path.size() == key.size() ? std::nullopt : FaultOfValueName(key.substr(path.size() + 1));
}

Fault FaultOfValueName(std::string_view name) {
  if (name.size() <= kMaxValueName) return std::nullopt;
  return fmt::format("a value name of {} characters; at most {} fit", name.size(), kMaxValueName);
}

Fault FaultOfText(std::string_view text) {
  if (text.size() <= kMaxText) return std::nullopt;
  return fmt::format("a text of {} characters; at most {} fit", text.size(), kMaxText);
}

Fault FaultOfHexadecimal(std::string_view digits) {
  if (!std::all_of(digits.begin(), digits.end(), IsHexadecimalDigit)) {
    return "binary data are hexadecimal digits, two for a byte, such as 0A01FF";
  }
  if (digits.size() % 2 != 0) {
    return fmt::format("{} hexadecimal digits; two make a byte", digits.size());
  }
  if (digits.size() <= 2 * kMaxBinary) return std::nullopt;
  return fmt::format("{} bytes of binary data; at most {} fit", digits.size() / 2, kMaxBinary);
}

std::optional<std::string> IndexedKeyName(unsigned index) {
  if (index >= IndexedKeys().size()) return std::nullopt;
  return IndexedKeys()[index];
}

unsigned IndexedKeyCount() {
  return static_cast<unsigned>(IndexedKeys().size());
}

unsigned BlockCount(Context context) {
  static const unsigned port_count = CountBlocks(0);
  static const unsigned device_count = CountBlocks(1);
  return context == Context::kPorts ? port_count : device_count;
}

}  // namespace dcecfg
