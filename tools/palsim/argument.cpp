#include "tools/palsim/argument.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>

#include "platform/sim/journal.h"
#include "platform/sim/text.h"
#include "tools/palsim/declarations.h"

namespace palsim {
namespace {

constexpr std::size_t kMostUnits = 65536;

}  // namespace

std::int64_t ParseNumber(const std::string& text) {
  if (const auto number = EnumeratorNumber(text)) return *number;
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  const char* begin = text.data() + (hexadecimal ? 2 : 0);
  const char* end = text.data() + text.size();
  std::int64_t value = 0;
  const auto [stop, error] = std::from_chars(begin, end, value, hexadecimal ? 16 : 10);
  const bool fits = value >= INT32_MIN && value <= std::int64_t{UINT32_MAX};
  if (error != std::errc() || stop != end || !fits) {
    throw UsageError(fmt::format("'{}' is no 32-bit number (use 5, -1 or 0x1F)", text));
  }
  return value;
}

std::size_t ParseSize(const std::string& text) {
  const std::int64_t size = ParseNumber(text);
  if (size < 0 || size > static_cast<std::int64_t>(kMostUnits)) {
    throw UsageError(fmt::format("'{}' is no size from 0 to {}", text, kMostUnits));
  }
  return static_cast<std::size_t>(size);
}

bool IsNull(const std::string& text) {
  return text == "null";
}

std::string NumberText(std::uint32_t number) {
  return fmt::format("{} (0x{:X})", number, number);
}

std::string PlainText(const std::vector<char>& text) {
  return {text.begin(), std::ranges::find(text, '\0')};
}

std::string PlainText(const std::vector<WCHAR>& text) {
  return sim::ToUtf8(std::u16string(text.begin(), std::ranges::find(text, WCHAR{0})));
}

std::string QuotedText(const std::vector<char>& text) {
  return fmt::format("\"{}\"", sim::Escape(PlainText(text)));
}

std::string QuotedText(const std::vector<WCHAR>& text) {
  return fmt::format("\"{}\"", sim::Escape(PlainText(text)));
}

std::string HexText(const std::vector<BYTE>& bytes) {
  return fmt::format("{:02X}", fmt::join(bytes, " "));
}

Argument<const WCHAR*>::Argument(const std::string& text)
    : is_null_(IsNull(text)), text_(sim::ToUtf16(text)) {}

Argument<const PALComPortPower*>::Argument(const std::string& text) : is_null_(IsNull(text)) {
  if (is_null_) return;
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) {
    throw UsageError(fmt::format("'{}' is no port's power (write ENABLE:PORT, such as 1:2)", text));
  }
  power_.enable = static_cast<DWORD>(ParseNumber(text.substr(0, colon)));
  power_.port_id = static_cast<DWORD>(ParseNumber(text.substr(colon + 1)));
}

std::string Argument<PALComPortPower*>::answer() {
  const PALComPortPower* power = value();
  return power == nullptr ? std::string() : fmt::format("{}:{}", power->enable, power->port_id);
}

}  // namespace palsim
