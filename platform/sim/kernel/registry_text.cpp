#include "platform/sim/kernel/registry_text.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

#include "platform/sim/text.h"
#include "platform/wince.h"

namespace sim {
namespace {

constexpr std::string_view kHeader = "REGEDIT4";
constexpr std::string_view kDesktopHeader = "Windows Registry Editor Version 5.00";

// Thrown for a line that is wrong, and caught where the line was begun.
struct LineError {
  const char* what;
};

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

bool TakeWord(std::string_view& text, std::string_view word) {
  if (!EqualNoCase(text.substr(0, word.size()), word)) return false;
  text.remove_prefix(word.size());
  return true;
}

bool IsBlankOrComment(std::string_view text) {
  text = Trim(text);
  return text.empty() || text.front() == ';';
}

void ExpectEnd(std::string_view text) {
  if (!IsBlankOrComment(text)) throw LineError{"there is something behind the end of the line"};
}

// The whole text as a hexadecimal number.
std::optional<std::uint32_t> ParseHex(std::string_view text, std::size_t digits) {
  std::uint32_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, 16);
  if (error != std::errc{} || stop != end || text.size() > digits) return std::nullopt;
  return number;
}

// Removes an escape from the text, behind its backslash.
char16_t TakeEscape(std::string_view& text) {
  if (!text.empty() && (text.front() == '\\' || text.front() == '"')) {
    const char16_t unit = static_cast<unsigned char>(text.front());
    text.remove_prefix(1);
    return unit;
  }
  const std::string_view digits = text.substr(0, 5);
  const bool unit_escape = digits.size() == 5 && digits.front() == 'x';
  const auto unit = unit_escape ? ParseHex(digits.substr(1), 4) : std::nullopt;
  if (!unit) throw LineError{R"(in quotes a backslash is written \\ and a quote \")"};
  text.remove_prefix(5);
  return static_cast<char16_t>(*unit);
}

// Removes a text in quotes from the line, which begins with the opening quote.
std::u16string TakeQuoted(std::string_view& line) {
  line.remove_prefix(1);
  std::u16string result;
  for (;;) {
    const std::size_t run = line.find_first_of("\"\\");
    if (run == std::string_view::npos) throw LineError{"the closing quote is missing"};
    result += ToUtf16(line.substr(0, run));
    const bool closed = line[run] == '"';
    line.remove_prefix(run + 1);
    if (closed) return result;
    result += TakeEscape(line);
  }
}

std::vector<std::uint8_t> ParseString(std::string_view text) {
  std::vector<std::uint8_t> data = StringData(TakeQuoted(text));
  ExpectEnd(text);
  return data;
}

std::vector<std::uint8_t> ParseMultiString(std::string_view text) {
  std::u16string texts;
  do {
    text = Trim(text);
    if (!text.starts_with('"')) throw LineError{"multi_sz: takes texts in quotes"};
    texts += TakeQuoted(text) + u'\0';
    text = Trim(text);
  } while (TakeWord(text, ","));
  ExpectEnd(text);
  return StringData(texts);
}

std::vector<std::uint8_t> ParseDword(std::string_view text) {
  const auto number = ParseHex(Trim(text.substr(0, text.find(';'))), 8);
  if (!number) throw LineError{"dword: takes one to eight hexadecimal digits"};
  return DwordData(*number);
}

std::vector<std::uint8_t> ParseBytes(std::string_view text) {
  std::vector<std::uint8_t> data;
  if (text.empty()) return data;
  for (;;) {
    const std::size_t comma = text.find(',');
    const auto byte = ParseHex(Trim(text.substr(0, comma)), 2);
    if (!byte) throw LineError{"hex: takes bytes of two hexadecimal digits with commas between"};
    data.push_back(static_cast<std::uint8_t>(*byte));
    if (comma == std::string_view::npos) return data;
    text.remove_prefix(comma + 1);
  }
}

// Removes "hex:" or "hex(7):" from the text and returns the type that it gives.
std::optional<std::uint32_t> TakeHexType(std::string_view& text) {
  if (TakeWord(text, "hex:")) return REG_BINARY;
  if (!TakeWord(text, "hex(")) return std::nullopt;
  const std::size_t end = text.find("):");
  const auto type = end == std::string_view::npos ? std::nullopt : ParseHex(text.substr(0, end), 8);
  if (!type) throw LineError{"hex(N): takes the value's type in hexadecimal digits"};
  text.remove_prefix(end + 2);
  return type;
}

// The path between the brackets. It may contain brackets.
std::u16string TakeKeyPath(std::string_view line) {
  if (line.starts_with('"')) {
    std::u16string path = TakeQuoted(line);
    if (!TakeWord(line, "]")) throw LineError{"a key line ends with ]"};
    ExpectEnd(line);
    return path;
  }
  std::size_t end = line.find(']');
  while (end != std::string_view::npos && !IsBlankOrComment(line.substr(end + 1))) {
    end = line.find(']', end + 1);
  }
  if (end == std::string_view::npos) throw LineError{"a key line ends with ]"};
  return ToUtf16(line.substr(0, end));
}

class Importer {
 public:
  Importer(Registry& registry, std::string_view text) : registry_(registry), rest_(text) {}

  std::vector<std::string> Run() {
    while (!rest_.empty()) {
      const std::size_t first_line = line_number_ + 1;
      try {
        ImportLine(TakeLine());
      } catch (const LineError& error) {
        errors_.push_back(std::to_string(first_line) + ": " + error.what);
      }
    }
    return std::move(errors_);
  }

 private:
  std::string_view TakeLine() {
    const std::size_t end = rest_.find('\n');
    std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    ++line_number_;
    if (line.ends_with('\r')) line.remove_suffix(1);
    return Trim(line);
  }

  void ImportLine(std::string_view line) {
    if (IsBlankOrComment(line) || line == kHeader || line == kDesktopHeader) return;
    if (line.front() == '[') {
      ImportKey(line.substr(1));
    } else if (line.front() == '"' || line.front() == '@') {
      ImportValue(line);
    } else {
      throw LineError{"neither a key, a value nor a comment"};
    }
  }

  void ImportKey(std::string_view line) {
    key_ = nullptr;
    const bool remove = TakeWord(line, "-");
    if (!IsUtf8(line)) throw LineError{"not UTF-8"};
    const std::u16string text = TakeKeyPath(line);
    std::u16string_view path = text;
    const std::shared_ptr<RegistryKey> root = registry_.TakeRoot(path);
    if (!root) throw LineError{"a key's path begins with a root such as HKEY_LOCAL_MACHINE"};
    if (!remove) {
      key_ = Registry::Create(root, path).key;
      if (!key_) throw LineError{"the path is too deep, or a name in it too long"};
    } else if (Registry::Find(root, path) == root) {
      throw LineError{"a root cannot be deleted"};
    } else if (Registry::Remove(root, path) == Registry::Removal::kOpen) {
      throw LineError{"a key that is open cannot be deleted"};
    }
  }

  void ImportValue(std::string_view line) {
    if (!IsUtf8(line)) throw LineError{"not UTF-8"};
    std::u16string name;
    if (!TakeWord(line, "@")) name = TakeQuoted(line);
    line = Trim(line);
    if (!TakeWord(line, "=")) throw LineError{"there is no = behind the value's name"};
    line = Trim(line);
    if (line.starts_with('-')) {
      ExpectEnd(line.substr(1));
      OpenKey().DeleteValue(name);
      return;
    }
    auto [type, data] = ParseData(line);
    OpenKey().SetValue(name, type, std::move(data));
  }

  std::pair<std::uint32_t, std::vector<std::uint8_t>> ParseData(std::string_view text) {
    if (text.starts_with('"')) return {REG_SZ, ParseString(text)};
    if (TakeWord(text, "dword:")) return {REG_DWORD, ParseDword(text)};
    if (TakeWord(text, "multi_sz:")) return {REG_MULTI_SZ, ParseMultiString(text)};
    if (const auto type = TakeHexType(text)) return {*type, ParseBytes(JoinLines(text))};
    throw LineError{"a value is \"text\", dword:, hex:, hex(N):, multi_sz: or -"};
  }

  // Joins the lines of a value, which end with a backslash, without their comments.
  std::string JoinLines(std::string_view text) {
    std::string joined;
    for (;;) {
      text = Trim(text.substr(0, text.find(';')));
      if (!text.ends_with('\\')) return joined.append(text);
      joined += text.substr(0, text.size() - 1);
      const std::size_t next = rest_.find_first_not_of(" \t");
      const bool cut = next == std::string_view::npos || rest_.find_first_of("[\"@", next) == next;
      if (cut) throw LineError{"the lines that the value goes on in are missing"};
      text = TakeLine();
    }
  }

  RegistryKey& OpenKey() {
    if (!key_) throw LineError{"the value stands below no key"};
    return *key_;
  }

  Registry& registry_;
  std::string_view rest_;
  std::size_t line_number_ = 0;
  std::shared_ptr<RegistryKey> key_;  // the key of the values that follow
  std::vector<std::string> errors_;
};

}  // namespace

std::vector<std::string> ImportRegistryText(Registry& registry, std::string_view text) {
  const std::string decoded = DecodeTextFile(text);
  return Importer(registry, decoded).Run();
}

}  // namespace sim
