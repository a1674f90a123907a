// dcecfg: writes and reads the configuration-store files of the device.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <span>
#include <string>

#include "frame/version.h"
#include "tools/command_words.h"
#include "tools/dcecfg/check.h"
#include "tools/dcecfg/text_form.h"
#include "tools/streams.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kUsage = 2;

constexpr const char* kFooter = R"(
Examples:
  dcecfg build settings.txt -o dcecfg       write the file \ConfigStore\dcecfg
  dcecfg dump dcecfg > settings.txt         and back; building that gives the same bytes
  dcecfg check dcecfg                       what the device would write, and what is wrong
  dcecfg build settings.txt -o - | dcecfg check -

  A text:
    direct {
      dword "Decodes:ThreadPriority" 251
    }

docs/dcecfg.md describes the text form.

Exit status: 0 done, 1 the content is wrong or a file cannot be used, 2 wrong usage.
)";

std::span<const BYTE> BytesOf(const std::string& content) {
  return {reinterpret_cast<const BYTE*>(content.data()), content.size()};
}

int Build(const std::string& input, const std::string& output) {
  try {
    const auto bytes = dcecfg::Build(tools::ReadInput(input));
    tools::WriteOutput(output, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    return kSuccess;
  } catch (const dcecfg::TextError& error) {
    tools::PrintError("{}:{}:{}: {}\n", tools::InputName(input), error.line(), error.column(),
                      error.what());
    return kFailure;
  }
}

int Dump(const std::string& file) {
  fmt::print("{}", dcecfg::Dump(BytesOf(tools::ReadInput(file))));
  return kSuccess;
}

int Check(const std::string& file) {
  const dcecfg::CheckReport report = dcecfg::Check(BytesOf(tools::ReadInput(file)));
  fmt::print("{}", report.text);
  return report.ok() ? kSuccess : kFailure;
}

class CommandLine {
 public:
  CommandLine() {
    app_.footer(kFooter);
    app_.set_version_flag("--version", std::string("dcecfg ") + pal::kLibraryVersion);
    app_.require_subcommand(1);
    auto* build = app_.add_subcommand("build", "Write the file that a text describes");
    build->add_option("TEXT", input_, "The text; - is standard input")->required();
    build->add_option("-o,--output", output_, "The file to write; - is standard output")
        ->required();
    build->callback([this] { status_ = Build(input_, output_); });
    AddReader("dump", "Show a file, any file, as text", &Dump);
    AddReader("check", "Say what the device would do with a file", &Check);
  }

  int Run(int argc, char** argv) {
    if (argc > 1 && argv[1] == tools::kCompleteOption) return Complete({argv + 2, argv + argc});
    try {
      app_.parse(argc, argv);
      return status_;
    } catch (const CLI::ParseError& error) {
      return app_.exit(error) == 0 ? kSuccess : kUsage;
    }
  }

 private:
  // Files are left to the shell.
  [[nodiscard]] int Complete(const std::vector<std::string>& words) const {
    const std::string last = words.empty() ? "" : words.back();
    std::vector<std::string> candidates;
    if (words.size() == 1) candidates = tools::WordsOf(app_).options;
    for (const tools::CommandWords& command : tools::CommandsOf(app_)) {
      if (words.size() == 1) candidates.push_back(command.name);
      if (words.size() > 1 && command.name == words[0]) candidates = command.options;
    }
    for (const std::string& each : candidates) {
      const bool is_kind = each.starts_with('-') == last.starts_with('-');
      if (is_kind && each.starts_with(last)) fmt::print("{}\n", each);
    }
    return kSuccess;
  }

  void AddReader(const char* name, const char* what, int (*command)(const std::string&)) {
    auto* subcommand = app_.add_subcommand(name, what);
    subcommand->add_option("FILE", input_, "The configuration-store file; - is standard input")
        ->required();
    subcommand->callback([this, command] { status_ = command(input_); });
  }

  CLI::App app_{"Writes and reads the device's configuration-store files.", "dcecfg"};
  std::string input_;
  std::string output_;
  int status_ = kSuccess;
};

}  // namespace

int main(int argc, char** argv) {
  try {
    return tools::CheckedOutput("dcecfg", [&] { return CommandLine().Run(argc, argv); });
  } catch (const std::exception& error) {
    tools::PrintError("dcecfg: {}\n", error.what());
    return kFailure;
  }
}
