#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>

#include "sysinfo/options/device_names.h"
#include "tools/dcecfg/limits.h"
#include "tools/dcecfg/line_reader.h"
#include "tools/dcecfg/syntax.h"
#include "tools/dcecfg/text_form.h"

namespace dcecfg {
namespace {

bool IsDeviceName(pal::WideText name, std::string_view text) {
  return std::equal(name.begin(), name.end(), text.begin(), text.end(),
                    [](WCHAR unit, char byte) { return unit == static_cast<BYTE>(byte); });
}

std::vector<BYTE> DevicesNamed(std::string_view text) {
  std::vector<BYTE> devices;
  for (std::size_t row = 0; row < pal::kDeviceNames.size(); ++row) {
    if (IsDeviceName(pal::kDeviceNames[row], text)) devices.push_back(static_cast<BYTE>(row));
  }
  return devices;
}

class Builder {
 public:
  std::vector<BYTE> Run(std::string_view text) {
    for (std::size_t number = 1; !text.empty(); ++number) {
      const std::size_t end = text.find('\n');
      LineReader line(text.substr(0, end), number);
      if (!line.AtEnd()) Statement(line);
      text.remove_prefix(std::min(end, text.size() - 1) + 1);
    }
    if (!open_.empty() && !truncated_) {
      throw TextError(open_.back().line, 1,
                      fmt::format("{} {{ has no closing }}", open_.back().section->word));
    }
    return std::move(bytes_);
  }

 private:
  struct Open {
    const Section* section;
    std::size_t line;
    bool has_items = false;
  };

  [[nodiscard]] Context context() const {
    return open_.empty() ? Context::kFile : open_.back().section->holds;
  }

  void Statement(LineReader& line) {
    const Token word = line.Word("a statement");
    if (truncated_) line.Fail(word.column, "nothing stands behind truncated");
    if (word.text == "}") {
      Close(line, word);
    } else if (!Directive(line, word)) {
      if (!open_.empty()) open_.back().has_items = true;
      Item(line, word);
    }
    line.ExpectEnd();
    CheckSize(line);
  }

  bool Directive(LineReader& line, const Token& word) {
    if (word.text == "oversized") {
      if (!bytes_.empty()) line.Fail(word.column, "oversized stands in front of all else");
      oversized_ = true;
    } else if (word.text == "truncated") {
      if (open_.empty()) line.Fail(word.column, "truncated stands where a } is missing");
      truncated_ = true;
    } else {
      return false;
    }
    return true;
  }

  void Item(LineReader& line, const Token& word) {
    if (word.text == "bytes") return RawBytes(line);
    for (const Section& section : kSections) {
      if (section.inside == context() && section.word == word.text) {
        return OpenSection(line, section);
      }
    }
    if (context() == Context::kDirect && DirectEntry(line, word)) return CountValue(line);
    if (context() == Context::kBlock && BlockEntry(line, word)) return CountValue(line);
    const std::string_view expected = kExpected.at(static_cast<std::size_t>(context()));
    line.Fail(word.column, fmt::format("{} cannot stand here; expected {}", word.text, expected));
  }

  void RawBytes(LineReader& line) {
    do {
      const Token token = line.Word("the hexadecimal data");
      std::string_view digits = token.text;
      for (; digits.size() >= 2; digits.remove_prefix(2)) {
        line.FailOn(FaultOfHexadecimal(digits.substr(0, 2)), token.column);
        bytes_.push_back(
            static_cast<BYTE>(std::stoul(std::string(digits.substr(0, 2)), nullptr, 16)));
      }
      line.FailOn(FaultOfHexadecimal(digits), token.column);
    } while (!line.AtEnd());
  }

  void OpenSection(LineReader& line, const Section& section) {
    bytes_.push_back(section.first ? *section.first : BlockIndex(line, section));
    const Token brace = line.Word("{");
    if (brace.text != "{") line.Fail(brace.column, "{ is missing");
    open_.push_back({&section, line.number()});
  }

  static BYTE BlockIndex(LineReader& line, const Section& section) {
    const auto maximum = static_cast<LONG>(BlockCount(section.inside)) - 1;
    if (section.inside == Context::kPorts) {
      return static_cast<BYTE>(line.Number("the port", 0, maximum));
    }
    LineReader ahead = line;
    const Token name = ahead.Next("the device");
    const std::vector<BYTE> devices = DevicesNamed(name.text);
    if (devices.empty() && !name.quoted) {
      return static_cast<BYTE>(line.Number("a device, unless it has a name,", 0, maximum));
    }
    if (devices.empty()) line.Fail(name.column, fmt::format("no device is named {}", name.text));
    if (devices.size() > 1) {
      line.Fail(name.column, fmt::format("{} is the name of the devices {}; give the number",
                                         name.text, fmt::join(devices, " and ")));
    }
    line = ahead;
    return devices.front();
  }

  // An end is looked for behind an item only.
  void Close(LineReader& line, const Token& brace) {
    if (open_.empty()) line.Fail(brace.column, "there is nothing to close");
    const Open closed = open_.back();
    if (!closed.has_items) {
      line.Fail(brace.column,
                fmt::format("{} {{ is empty; the device would take its end for an entry",
                            closed.section->word));
    }
    open_.pop_back();
    bytes_.push_back(closed.section->last);
  }

  bool DirectEntry(LineReader& line, const Token& word) {
    if (word.text == "indexed") {
      const auto maximum = static_cast<LONG>(IndexedKeyCount()) - 1;
      bytes_.push_back(static_cast<BYTE>(line.Number("the index", 0, maximum)));
      AppendDword(line.Dword());
      return true;
    }
    const Word* const type = FindWord(kLiteralKeys, word.text);
    if (type == nullptr) return false;
    bytes_.push_back(type->byte);
    AppendChecked(line, "the key, \"KEY:NAME\",", FaultOfLiteralKey);
    if (type->byte == pal::dcecfg::kDwordKey) {
      AppendDword(line.Dword());
    } else if (type->byte == pal::dcecfg::kBinaryKey) {
      AppendText(line.Hexadecimal());
    } else {
      AppendChecked(line, "the text", FaultOfText);
    }
    return true;
  }

  bool BlockEntry(LineReader& line, const Token& word) {
    const Word* const frame = FindWord(kFrames, word.text);
    if (frame == nullptr) return false;
    const Token format_word = line.Word("the format");
    const Word* const format = FindWord(kFormats, format_word.text);
    if (format == nullptr) {
      line.Fail(format_word.column, "a format is one-byte, two-byte or string \"NAME\"");
    }
    bytes_.push_back(frame->byte);
    bytes_.push_back(format->byte);
    if (format->byte == kNamedFormat) AppendChecked(line, "the value name", FaultOfValueName);
    AppendText(line.Hexadecimal());
    return true;
  }

  void AppendChecked(LineReader& line, std::string_view wanted, Fault (*check)(std::string_view)) {
    const Token token = line.Text(wanted);
    line.FailOn(check(token.text), token.column);
    AppendText(token.text);
  }

  void AppendText(std::string_view text) {
    std::transform(text.begin(), text.end(), std::back_inserter(bytes_),
                   [](char unit) { return static_cast<BYTE>(unit); });
    bytes_.push_back(0);
  }

  void AppendDword(LONG number) {
    const auto bits = static_cast<DWORD>(number);
    bytes_.push_back(static_cast<BYTE>(bits & 0xFF));
    bytes_.push_back(static_cast<BYTE>(bits >> 8 & 0xFF));
  }

  void CountValue(LineReader& line) {
    if (++values_ <= kMaxValues || oversized_) return;
    line.Fail(1, fmt::format("this is value {}; the device takes at most {}", values_, kMaxValues));
  }

  void CheckSize(LineReader& line) const {
    if (bytes_.size() <= kMaxFileSize || oversized_) return;
    line.Fail(1, fmt::format("the file has {} bytes here; the device takes at most {}",
                             bytes_.size(), kMaxFileSize));
  }

  std::vector<BYTE> bytes_;
  std::vector<Open> open_;
  std::size_t values_ = 0;
  bool oversized_ = false;
  bool truncated_ = false;
};

}  // namespace

std::vector<BYTE> Build(std::string_view text) {
  return Builder().Run(text);
}

}  // namespace dcecfg
