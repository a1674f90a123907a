#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>

#include "sysinfo/options/device_names.h"
#include "tools/dcecfg/limits.h"
#include "tools/dcecfg/quote.h"
#include "tools/dcecfg/syntax.h"
#include "tools/dcecfg/text_form.h"

namespace dcecfg {
namespace {

using Bytes = std::span<const BYTE>;

// A statement as far as it could be read. Without `text` it goes into the dump as bytes.
struct Entry {
  std::size_t size = 0;
  std::string text;
  std::string comment;
  bool is_value = !text.empty();  // the device writes it to the registry
};

// The parts of one entry, one after the other; each is nothing where the data end in it.
class EntryReader {
 public:
  explicit EntryReader(Bytes data) : data_(data) {}

  [[nodiscard]] std::size_t size() const { return at_; }
  [[nodiscard]] bool ended() const { return at_ == data_.size(); }

  std::optional<BYTE> Byte() {
    if (ended()) return std::nullopt;
    return data_[at_++];
  }

  std::optional<LONG> Dword() {
    if (data_.size() - at_ < 2) return std::nullopt;
    const auto bits = static_cast<unsigned>(data_[at_] | (data_[at_ + 1] << 8));
    at_ += 2;
    return static_cast<std::int16_t>(bits);
  }

  std::optional<std::string> Text() {
    const Bytes rest = data_.subspan(at_);
    const auto end = std::find(rest.begin(), rest.end(), BYTE{0});
    at_ = end == rest.end() ? data_.size() : at_ + static_cast<std::size_t>(end - rest.begin()) + 1;
    if (end == rest.end()) return std::nullopt;
    return std::string(rest.begin(), end);
  }

 private:
  Bytes data_;
  std::size_t at_ = 0;
};

std::string HexadecimalText(const std::string& digits) {
  return digits.empty() ? "\"\"" : digits;
}

Entry Cut(const EntryReader& reader) {
  return {reader.size(), "", "the file ends in this entry"};
}

Entry Faulty(const EntryReader& reader, const Fault& fault) {
  return {reader.size(), "", *fault};
}

// With one byte left for the number, the device takes -1 and reads the byte again behind the entry.
// No statement makes such bytes.
Entry NumberEntry(EntryReader& reader, const std::string& statement, const std::string& comment) {
  if (const auto number = reader.Dword()) {
    return {reader.size(), fmt::format("{} {}", statement, *number), comment};
  }
  if (reader.ended()) return Cut(reader);
  return {reader.size(), "", statement + " -1: the number has one byte only", true};
}

Entry IndexedEntry(Bytes data) {
  EntryReader reader(data);
  const BYTE index = *reader.Byte();
  const auto name = IndexedKeyName(index);
  if (!name) {
    reader.Byte();
    return {reader.size(), "", fmt::format("no key has index {}", index)};
  }
  return NumberEntry(reader, fmt::format("indexed {}", index), Escape(*name));
}

Entry DwordEntry(EntryReader& reader, const std::string& key, const Fault& key_fault) {
  Entry entry = NumberEntry(reader, fmt::format("dword {}", Quote(key)), "");
  return key_fault && entry.is_value ? Faulty(reader, key_fault) : entry;
}

Entry DirectEntry(Bytes data) {
  EntryReader reader(data);
  const Word* const type = FindByte(kLiteralKeys, *reader.Byte());
  if (type == nullptr) return IndexedEntry(data);
  const auto key = reader.Text();
  if (!key) return Cut(reader);
  const Fault key_fault = FaultOfLiteralKey(*key);
  if (type->byte == pal::dcecfg::kDwordKey) return DwordEntry(reader, *key, key_fault);
  const auto value = reader.Text();
  if (!value) return Cut(reader);
  const bool binary = type->byte == pal::dcecfg::kBinaryKey;
  const Fault value_fault = binary ? FaultOfHexadecimal(*value) : FaultOfText(*value);
  if (key_fault || value_fault) return Faulty(reader, key_fault ? key_fault : value_fault);
  return {reader.size(),
          fmt::format("{} {} {}", type->word, Quote(*key),
                      binary ? HexadecimalText(*value) : Quote(*value)),
          ""};
}

Entry BlockEntry(Bytes data) {
  EntryReader reader(data);
  const Word* const frame = FindByte(kFrames, *reader.Byte());
  const auto format_byte = reader.Byte();
  if (!format_byte) return Cut(reader);
  const Word* const format = FindByte(kFormats, *format_byte);
  if (frame == nullptr || format == nullptr) {
    reader.Byte();
    return {reader.size(), "", "no such frame type or format"};
  }
  const bool named = format->byte == kNamedFormat;
  const auto name = named ? reader.Text() : std::string();
  const auto digits = name ? reader.Text() : std::nullopt;
  if (!digits) return Cut(reader);
  const Fault name_fault = FaultOfValueName(*name);
  const Fault digits_fault = FaultOfHexadecimal(*digits);
  if (name_fault || digits_fault) return Faulty(reader, name_fault ? name_fault : digits_fault);
  const std::string name_text = named ? ' ' + Quote(*name) : "";
  return {reader.size(),
          fmt::format("{} {}{} {}", frame->word, format->word, name_text, HexadecimalText(*digits)),
          ""};
}

// The device's name where it has one of its own, else its number.
std::string DeviceText(BYTE index) {
  const pal::WideText wide = pal::kDeviceNames.at(index);
  const auto& names = pal::kDeviceNames;
  if (std::count(names.begin(), names.end(), wide) > 1) return std::to_string(index);
  std::string name;
  std::transform(wide.begin(), wide.end(), std::back_inserter(name),
                 [](WCHAR unit) { return static_cast<char>(unit); });
  return name.find(' ') == std::string::npos ? name : Quote(name);
}

class Dumper {
 public:
  explicit Dumper(Bytes file) : rest_(file) {}

  std::string Run() {
    const bool too_large = rest_.size() > kMaxFileSize;
    while (!rest_.empty()) Statement();
    if (!open_.empty()) Line("truncated", "the file ends here");
    if (too_large || values_ > kMaxValues) {
      text_ = "oversized  # more than the device takes\n" + text_;
    }
    return std::move(text_);
  }

 private:
  struct Open {
    const Section* section;
    bool has_items = false;
  };

  [[nodiscard]] Context context() const {
    return open_.empty() ? Context::kFile : open_.back().section->holds;
  }

  // Steps over faulty bytes as the device does, so that what follows is read as the device reads
  // it.
  void Statement() {
    const bool may_end = !open_.empty() && open_.back().has_items;
    if (may_end && rest_.front() == open_.back().section->last) return Close();
    if (!open_.empty()) open_.back().has_items = true;
    if (context() == Context::kDirect) return Put(DirectEntry(rest_));
    if (context() == Context::kBlock) return Put(BlockEntry(rest_));
    const Section* const section = SectionAt(rest_.front());
    if (section != nullptr) return OpenSection(*section);
    const bool in_file = context() == Context::kFile;
    Put({in_file ? BytesBetweenSections() : 1, "", in_file ? "skipped" : "no such index"});
  }

  [[nodiscard]] const Section* SectionAt(BYTE byte) const {
    const auto* const found =
        std::find_if(kSections.begin(), kSections.end(), [&](const Section& section) {
          const bool is_first =
              section.first ? *section.first == byte : byte < BlockCount(section.inside);
          return section.inside == context() && is_first;
        });
    return found == kSections.end() ? nullptr : found;
  }

  [[nodiscard]] std::size_t BytesBetweenSections() const {
    const auto end = std::find_if(rest_.begin(), rest_.end(),
                                  [this](BYTE byte) { return SectionAt(byte) != nullptr; });
    return static_cast<std::size_t>(end - rest_.begin());
  }

  void OpenSection(const Section& section) {
    const BYTE byte = rest_.front();
    std::string index;
    if (section.inside == Context::kPorts) index = fmt::format(" {}", byte);
    if (section.inside == Context::kDevices) index = ' ' + DeviceText(byte);
    Line(fmt::format("{}{} {{", section.word, index));
    open_.push_back({&section});
    rest_ = rest_.subspan(1);
  }

  void Close() {
    open_.pop_back();
    Line("}");
    rest_ = rest_.subspan(1);
  }

  void Put(const Entry& entry) {
    if (entry.is_value) ++values_;
    if (entry.text.empty()) {
      PutBytes(rest_.first(entry.size), entry.comment);
    } else {
      Line(entry.text, entry.comment);
    }
    rest_ = rest_.subspan(entry.size);
  }

  void PutBytes(Bytes bytes, std::string_view comment) {
    constexpr std::size_t kBytesPerLine = 16;
    while (!bytes.empty()) {
      const Bytes row = bytes.first(std::min(kBytesPerLine, bytes.size()));
      Line(fmt::format("bytes {:02X}", fmt::join(row, " ")), comment);
      bytes = bytes.subspan(row.size());
      comment = {};
    }
  }

  void Line(std::string_view statement, std::string_view comment = {}) {
    text_ += std::string(2 * open_.size(), ' ').append(statement);
    if (!comment.empty()) text_.append("  # ").append(comment);
    text_ += '\n';
  }

  Bytes rest_;
  std::vector<Open> open_;
  std::size_t values_ = 0;
  std::string text_;
};

}  // namespace

std::string Dump(std::span<const BYTE> file) {
  return Dumper(file).Run();
}

}  // namespace dcecfg
