#include "tools/palsim/completion.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>

#include "platform/sim/text.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/declarations.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/samples.h"

namespace palsim {
namespace {

constexpr std::array<std::string_view, 4> kRoots{"HKLM\\", "HKCU\\", "HKCR\\", "HKU\\"};

bool BeginsWith(std::string_view text, std::string_view beginning) {
  return text.size() >= beginning.size() &&
         sim::EqualNoCase(text.substr(0, beginning.size()), beginning);
}

template <class Names>
std::vector<std::string> Beginning(const Names& names, const std::string& word) {
  std::vector<std::string> found;
  for (const std::string_view name : names) {
    if (BeginsWith(name, word)) found.emplace_back(name);
  }
  return found;
}

std::vector<std::string> Keys(const sim::Registry& registry, const std::string& word) {
  const std::size_t last = word.find_last_of('\\');
  if (last == std::string::npos) return Beginning(kRoots, word);
  const std::string above = word.substr(0, last + 1);
  const auto key = registry.Find(std::string_view(above).substr(0, last));
  std::vector<std::string> found;
  if (key == nullptr) return found;
  for (const auto& child : key->keys()) {
    const std::string name = sim::ToUtf8(child->name());
    if (BeginsWith(name, word.substr(last + 1))) found.push_back(above + name);
  }
  return found;
}

// Files of the host with this ending, and folders with their slash.
std::vector<std::string> Files(const std::string& word, std::string_view ending) {
  const std::size_t name = word.find_last_of('/') + 1;  // of the whole word where it has none
  const std::string above = word.substr(0, name);
  std::vector<std::string> found;
  std::error_code ignored;
  for (const auto& entry :
       std::filesystem::directory_iterator(above.empty() ? "." : above, ignored)) {
    const std::string file = above + entry.path().filename().string();
    const bool is_folder = entry.is_directory(ignored);
    if (!file.starts_with(word) || !(is_folder || file.ends_with(ending))) continue;
    found.push_back(file + (is_folder ? "/" : ""));
  }
  return found;
}

std::vector<std::string> CommandNames(const std::vector<tools::CommandWords>& commands) {
  std::vector<std::string> names(commands.size());
  std::ranges::transform(commands, names.begin(), &tools::CommandWords::name);
  return names;
}

// The arguments of "call EXPORT ARGUMENTS" whose numbers have names.
std::vector<std::string> Enumerators(const std::vector<std::string>& words) {
  const Declaration* declaration = FindDeclaration(words[1]);
  const std::size_t place = words.size() - 3;
  if (declaration == nullptr || place >= declaration->parameters.size()) return {};
  return Beginning(EnumeratorsOf(declaration->parameters.at(place).enumeration), words.back());
}

// Behind the name of a command, which is the first word: what it has in the shell and outside.
std::vector<std::string> OfCommand(const std::vector<std::string>& words,
                                   const std::vector<tools::CommandWords>& commands) {
  const std::string& last = words.back();
  const std::string& before = words[words.size() - 2];
  const auto command = std::ranges::find(commands, words[0], &tools::CommandWords::name);
  if (last.starts_with('-') && command != commands.end()) return Beginning(command->options, last);
  if (before == "--effect" || before == "--only") return Beginning(EffectNames(), last);
  if (words[0] != "call" && words[0] != "usage") return {};
  return words.size() == 2 ? Beginning(ExportNames(), last) : Enumerators(words);
}

}  // namespace

std::vector<std::string> Completions(const std::string& line,
                                     const std::vector<tools::CommandWords>& commands,
                                     const sim::Registry& registry) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  if (words.empty() || line.back() == ' ') words.emplace_back();
  const std::string& last = words.back();
  if (words.size() == 1 || words[0] == "help") return Beginning(CommandNames(commands), last);
  std::vector<std::string> found = OfCommand(words, commands);
  if (!found.empty() || last.starts_with('-')) return found;
  if (words[0] == "registry" && words.size() == 2) return Keys(registry, last);
  if (words[0] == "run" && words.size() == 2) return Files(last, "");
  if (words[0] == "journal" && !words[words.size() - 2].starts_with('-')) {
    return Beginning(std::array<std::string_view, 2>{"on", "off"}, last);
  }
  return {};
}

std::vector<std::string> CommandLineCompletions(std::vector<std::string> words,
                                                const tools::CommandWords& own,
                                                const std::vector<tools::CommandWords>& commands) {
  if (words.empty()) return {};
  const std::string last = words.back();
  if (words.size() == 2 && words[0] == "--usage") return Beginning(ExportNames(), last);
  const bool has_device =
      words.size() > 1 &&
      std::ranges::find(commands, words[0], &tools::CommandWords::name) == commands.end();
  if (has_device) words.erase(words.begin());
  if (words.size() == 1) {
    if (last.starts_with('-')) return Beginning(own.options, last);
    std::vector<tools::CommandWords> fitting = commands;
    const char* group = has_device ? kCommandsOnDevice : kCommandsAlone;
    std::erase_if(fitting, [&](const tools::CommandWords& each) { return each.group != group; });
    return Beginning(CommandNames(fitting), last);
  }
  const std::string& before = words[words.size() - 2];
  if (before == "--sample" || before == "--device") return Beginning(SampleNames(), last);
  std::vector<std::string> found = OfCommand(words, commands);
  const bool takes_scenario = words[0] == "run" || words[0] == "test";
  if (!found.empty() || !takes_scenario || before.starts_with("--")) return found;
  return Files(last, ".scenario");
}

}  // namespace palsim
