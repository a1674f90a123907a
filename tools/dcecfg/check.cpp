#include "tools/dcecfg/check.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdarg>
#include <memory>
#include <string_view>
#include <vector>

#include "configstore/dcecfg_parser.h"
#include "frame/registry_root.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "platform/sim/kernel/registry.h"
#include "platform/sim/kernel/registry_text.h"
#include "platform/sim/text.h"
#include "tools/dcecfg/quote.h"
#include "tools/dcecfg/syntax.h"

namespace dcecfg {
namespace {

// A file in the parser, with the warnings and errors that came of it.
class ParsedFile {
 public:
  explicit ParsedFile(std::span<const BYTE> file)
      : parser_(std::make_unique<pal::CDCECFGParser>()) {
    current = this;
    refused_ = pal::Failed(parser_->Load(file)) || pal::Failed(parser_->ParseFile());
    current = nullptr;
  }
  ~ParsedFile() = default;
  ParsedFile(const ParsedFile&) = delete;
  ParsedFile& operator=(const ParsedFile&) = delete;

  // The one whose parser is at work.
  static inline ParsedFile* current = nullptr;

  void AddTraceLine(DWORD category, std::string_view line) {
    switch (static_cast<pal::Severity>(category >> 30)) {
      case pal::Severity::kWarning:
        ++warnings_;
        return AddFinding("warning", line);
      case pal::Severity::kError:
        ++errors_;
        return AddFinding("error", line);
      default:
        return;
    }
  }

  [[nodiscard]] std::span<const pal::DcecfgKeyRecord> records() const { return parser_->records(); }
  [[nodiscard]] bool refused() const { return refused_; }
  [[nodiscard]] std::size_t errors() const { return errors_; }
  [[nodiscard]] std::size_t warnings() const { return warnings_; }
  [[nodiscard]] const std::string& findings() const { return findings_; }

 private:
  void AddFinding(std::string_view kind, std::string_view line) {
    findings_ += fmt::format("offset {}: {}: {}\n", parser_->item_offset(), kind, Escape(line));
  }

  std::unique_ptr<pal::CDCECFGParser> parser_;
  bool refused_ = false;
  std::size_t errors_ = 0;
  std::size_t warnings_ = 0;
  std::string findings_;
};

// The platform's 8-bit text as UTF-8.
std::string Latin1(std::string_view text) {
  std::u16string wide(text.size(), u'\0');
  std::transform(text.begin(), text.end(), wide.begin(),
                 [](char unit) { return static_cast<unsigned char>(unit); });
  return sim::ToUtf8(wide);
}

// The library takes the root by the name that the path begins with, else the first one, and the key
// from the first backslash on, whatever stands between.
std::string RegistryPath(std::string_view key_path) {
  const auto& roots = pal::kRegistryRootNames;
  const std::size_t root = pal::FindRegistryRoot(key_path);
  return std::string(root < roots.size() ? roots.at(root) : roots.front()) +
         Latin1(key_path.substr(key_path.find('\\')));
}

sim::RegistryValue RegistryValueOf(const pal::DcecfgKeyRecord& record) {
  const std::string_view text = record.value_text;
  switch (record.type) {
    case pal::DcecfgValueType::kString:  // 8-bit text without a terminator
      return {u"", REG_SZ, {text.begin(), text.end()}};
    case pal::DcecfgValueType::kDword:
      return {u"", REG_DWORD, sim::DwordData(static_cast<DWORD>(record.dword))};
    case pal::DcecfgValueType::kBinary:
      break;
  }
  return {u"", REG_BINARY, {record.binary, record.binary + record.binary_length}};
}

struct ImportLines {
  std::string key;    // "[HKEY_...]\n"
  std::string value;  // "name"=... and its line end
};

// Whether the platform's registry can have the key of a record.
bool CanBeWritten(const pal::DcecfgKeyRecord& record) {
  std::u16string text = sim::ToUtf16(RegistryPath(record.key_path));
  std::u16string_view path = text;
  sim::Registry registry;
  return sim::Registry::Create(registry.TakeRoot(path), path).key != nullptr;
}

// As the simulated device's registry writes them when it holds this value alone.
ImportLines ImportLinesOf(const pal::DcecfgKeyRecord& record) {
  const std::string path = RegistryPath(record.key_path);
  sim::RegistryValue value = RegistryValueOf(record);
  sim::Registry registry;
  registry.SetRaw(path, Latin1(record.value_name), value.type, std::move(value.data));
  const std::string text = sim::ExportRegistryText(*registry.Find(path));
  const std::size_t key = text.find('[');
  const std::size_t value_line = text.find('\n', key) + 1;
  return {text.substr(key, value_line - key), text.substr(value_line)};
}

std::string ImportText(std::span<const pal::DcecfgKeyRecord> records) {
  std::string text;
  std::string last_key;
  for (const pal::DcecfgKeyRecord& record : records) {
    if (!CanBeWritten(record)) {
      text += "; not written, its key is too deep: " + Quote(record.key_path) + '\n';
      continue;
    }
    const ImportLines lines = ImportLinesOf(record);
    if (lines.key != last_key) text += lines.key;
    last_key = lines.key;
    if (record.type == pal::DcecfgValueType::kString)
      text += "; " + Quote(record.value_text) + '\n';
    text += lines.value;
  }
  return text;
}

std::string Count(std::size_t count, std::string_view noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

// The device looks for a section's first byte everywhere.
bool HasSection(std::span<const BYTE> file) {
  return std::ranges::any_of(kSections, [&](const Section& section) {
    return section.inside == Context::kFile && std::ranges::find(file, section.first) != file.end();
  });
}

bool IsTextForm(std::span<const BYTE> file) {
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  return std::ranges::any_of(kSections, [&](const Section& section) {
    return section.inside == Context::kFile &&
           text.find(fmt::format("{} {{", section.word)) != std::string_view::npos;
  });
}

CheckReport OtherFile(std::span<const BYTE> file) {
  CheckReport report;
  report.is_other = true;
  report.text = IsTextForm(file) ? "This is the text form; 'dcecfg build' makes the file of it\n"
                                 : "No section is found; the device would write nothing\n";
  return report;
}

}  // namespace

CheckReport Check(std::span<const BYTE> file) {
  if (!HasSection(file)) return OtherFile(file);
  const ParsedFile parsed(file);
  CheckReport report;
  report.refused = parsed.refused();
  report.errors = parsed.errors();
  report.warnings = parsed.warnings();
  if (!report.refused) {
    const auto written = std::ranges::count_if(parsed.records(), &CanBeWritten);
    report.values = static_cast<std::size_t>(written);
    report.errors += parsed.records().size() - report.values;
  }
  report.text = parsed.findings();
  if (!report.refused) report.text += ImportText(parsed.records());
  report.text += fmt::format("{}{} would be written; {}, {}\n",
                             report.refused ? "The device refuses the file: " : "",
                             Count(report.values, "value"), Count(report.errors, "error"),
                             Count(report.warnings, "warning"));
  return report;
}

std::optional<std::string> OnlyKeyOf(std::span<const BYTE> file) {
  const ParsedFile parsed(file);
  if (parsed.refused() || parsed.errors() != 0 || parsed.records().size() != 1) return std::nullopt;
  const pal::DcecfgKeyRecord& record = parsed.records().front();
  return fmt::format("{}:{}", record.key_path, record.value_name);
}

}  // namespace dcecfg

// The trace function of the library's parser, which is linked here without the rest of the library.
DWORD pal::PALTrace(DWORD /*debug_echo*/, DWORD category, const char* format, ...) {
  pal::TraceLine line;
  va_list arguments;
  va_start(arguments, format);
  pal::FormatTraceLine(line, format, arguments);
  va_end(arguments);
  if (::dcecfg::ParsedFile::current != nullptr) {
    ::dcecfg::ParsedFile::current->AddTraceLine(category, line);
  }
  return 0;
}
