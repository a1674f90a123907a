#include <fmt/format.h>

#include <optional>

#include "platform/sim/kernel/registry_text.h"
#include "platform/sim/text.h"
#include "platform/wince.h"

namespace sim {
namespace {

constexpr std::size_t kColumns = 80;
constexpr std::size_t kOneLine = 0;

bool IsControl(char16_t unit) {
  return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

bool IsUnpaired(std::u16string_view text, std::size_t index) {
  const auto high = [](char16_t unit) { return (unit & 0xFC00) == 0xD800; };
  const auto low = [](char16_t unit) { return (unit & 0xFC00) == 0xDC00; };
  if (high(text[index])) return index + 1 == text.size() || !low(text[index + 1]);
  return low(text[index]) && (index == 0 || !high(text[index - 1]));
}

// Whether a line of UTF-8 can hold the text as it is.
bool IsPlain(std::u16string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (IsControl(text[i]) || IsUnpaired(text, i)) return false;
  }
  return true;
}

void AppendEscaped(std::u16string& result, char16_t unit) {
  constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
  result += u"\\x";
  for (const int shift : {12, 8, 4, 0}) result += kDigits[(unit >> shift) & 0xF];
}

std::string Quoted(std::u16string_view text) {
  std::u16string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (IsControl(text[i]) || IsUnpaired(text, i)) {
      AppendEscaped(result, text[i]);
      continue;
    }
    if (text[i] == u'\\' || text[i] == u'"') result += u'\\';
    result += text[i];
  }
  return '"' + ToUtf8(result) + '"';
}

// The text in the data, if that is UTF-16 with one terminator, at its end, and fits a line.
std::optional<std::u16string> PlainText(const std::vector<std::uint8_t>& data) {
  if (data.size() < 2 || data.size() % 2 != 0) return std::nullopt;
  std::u16string text = UnitsOf(data);
  if (text.find(u'\0') != text.size() - 1) return std::nullopt;
  text.pop_back();
  if (!IsPlain(text)) return std::nullopt;
  return text;
}

// `column` is where the text begins in its line; kOneLine: it is not wrapped.
std::string HexText(const RegistryValue& value, std::size_t column) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = value.type == REG_BINARY ? "hex:" : fmt::format("hex({:x}):", value.type);
  std::size_t used = column + text.size();
  for (std::size_t i = 0; i < value.data.size(); ++i) {
    if (column != kOneLine && used + 4 > kColumns) {  // two digits, a comma, a backslash
      text += "\\\n  ";
      used = 2;
    }
    text += {kDigits[value.data[i] >> 4], kDigits[value.data[i] & 0xF]};
    if (i + 1 < value.data.size()) text += ',';
    used += 3;
  }
  return text;
}

std::string ValueTextAt(const RegistryValue& value, std::size_t column) {
  if (const auto number = DwordOf(value)) return fmt::format("dword:{:08x}", *number);
  const auto text = value.type == REG_SZ ? PlainText(value.data) : std::nullopt;
  return text ? Quoted(*text) : HexText(value, column);
}

std::string PathText(const RegistryKey& key) {
  const std::u16string path = key.Path();
  return IsPlain(path) && path.find(u']') == std::u16string::npos ? ToUtf8(path) : Quoted(path);
}

// A key with subkeys but without values needs no line: the line of its first subkey makes it.
void ExportKey(const RegistryKey& key, bool is_root, std::string& text) {
  if (!key.values().empty() || (key.keys().empty() && !is_root)) {
    text += "\n[" + PathText(key) + "]\n";
  }
  for (const RegistryValue& value : key.values()) {
    const std::string name = value.name.empty() ? "@=" : Quoted(value.name) + '=';
    text += name + ValueTextAt(value, name.size()) + '\n';
  }
  for (const auto& child : key.keys()) ExportKey(*child, false, text);
}

}  // namespace

std::string ExportRegistryText(const Registry& registry) {
  std::string text = "REGEDIT4\n";
  for (const unsigned index : {0U, 1U, 2U, 3U}) ExportKey(*registry.root(index), true, text);
  return text;
}

std::string ExportRegistryText(const RegistryKey& key) {
  std::string text = "REGEDIT4\n";
  ExportKey(key, key.Path().find(u'\\') == std::u16string::npos, text);
  return text;
}

std::string ValueText(const RegistryValue& value) {
  return ValueTextAt(value, kOneLine);
}

}  // namespace sim
