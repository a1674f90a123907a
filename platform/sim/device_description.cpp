#include "platform/sim/device_description.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <toml++/toml.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/sim/host_file.h"

namespace sim {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMarker = "# Kept by the simulator";
constexpr std::string_view kMarkerLine = "# Kept by the simulator: do not edit below.\n";

// device.toml, in the two parts that it has.
struct Description {
  std::string author;
  std::string kept;  // from the marker on; empty where there is none
};

Description Split(const std::string& text) {
  std::size_t begin = 0;
  while (begin != text.size()) {
    if (text.compare(begin, kMarker.size(), kMarker) == 0) break;
    const std::size_t end = text.find('\n', begin);
    begin = end == std::string::npos ? text.size() : end + 1;
  }
  return {text.substr(0, begin), text.substr(begin)};
}

// One part of device.toml while it is read; knows where its lines stand in the whole.
class Part {
 public:
  Part(fs::path file, std::string_view text, std::size_t lines_above)
      : file_(std::move(file)), lines_above_(lines_above), table_(Parse(text)) {}

  [[nodiscard]] const toml::table& table() const { return table_; }

  [[noreturn]] void Fail(const toml::source_region& where, const std::string& what) const {
    throw DeviceFolderError(
        fmt::format("{}:{}: {}", file_.string(), where.begin.line + lines_above_, what));
  }

  void Allow(const toml::table& table, const std::vector<std::string_view>& allowed) const {
    for (const auto& [key, node] : table) {
      if (std::find(allowed.begin(), allowed.end(), key.str()) != allowed.end()) continue;
      Fail(key.source(),
           fmt::format("unknown key '{}'; allowed: {}", key.str(), fmt::join(allowed, ", ")));
    }
  }

  template <typename Type>
  [[nodiscard]] const Type& As(const toml::node& node, std::string_view expected) const {
    const auto* typed = node.as<Type>();
    if (typed == nullptr) Fail(node.source(), fmt::format("expected {}", expected));
    return *typed;
  }

 private:
  [[nodiscard]] toml::table Parse(std::string_view text) const {
    try {
      return toml::parse(text);
    } catch (const toml::parse_error& error) {
      Fail(error.source(), std::string(error.description()));
    }
  }

  fs::path file_;
  std::size_t lines_above_;
  toml::table table_;
};

DeviceIdentity ReadIdentity(const Part& part, const fs::path& file) {
  DeviceIdentity identity;
  const toml::node* name = part.table().get("name");
  if (name == nullptr) throw DeviceFolderError(file.string() + ": the key 'name' is missing");
  identity.name = part.As<toml::value<std::string>>(*name, "a text: name = \"...\"").get();
  if (identity.name.empty()) part.Fail(name->source(), "the name is empty");
  if (const toml::node* description = part.table().get("description")) {
    identity.description =
        part.As<toml::value<std::string>>(*description, "a text: description = \"...\"").get();
  }
  return identity;
}

// The module with those of its entries that the list names.
Module WithEntries(const Part& part, const Module& known, const toml::node& list) {
  constexpr std::string_view kExpected = R"(a list of entry names: ["...", "..."])";
  Module module{known.name, {}};
  for (const toml::node& item : part.As<toml::array>(list, kExpected)) {
    const std::string& entry = part.As<toml::value<std::string>>(item, kExpected).get();
    const auto found = known.entries.find(entry);
    if (found == known.entries.end()) {
      std::vector<std::string_view> names;
      for (const auto& [name, address] : known.entries) names.push_back(name);
      part.Fail(item.source(), fmt::format("{} has no entry '{}'; allowed: {}", known.name, entry,
                                           fmt::join(names, ", ")));
    }
    module.entries.insert(*found);
  }
  return module;
}

// What the device has in place of its built-in libraries; nothing where the file does not say.
std::optional<std::vector<Module>> ReadModules(const Part& part, const std::vector<Module>& known) {
  const toml::node* node = part.table().get("modules");
  if (node == nullptr) return std::nullopt;
  std::vector<std::string_view> names;
  std::transform(known.begin(), known.end(), std::back_inserter(names),
                 [](const Module& module) -> std::string_view { return module.name; });
  const auto& table =
      part.As<toml::table>(*node, "a table of libraries with lists of their entries");
  part.Allow(table, names);
  std::vector<Module> modules;
  for (const Module& module : known) {
    if (const toml::node* list = table.get(module.name)) {
      modules.push_back(WithEntries(part, module, *list));
    }
  }
  return modules;
}

std::uint64_t ReadClock(const Part& part) {
  part.Allow(part.table(), {"state"});
  const toml::node* node = part.table().get("state");
  if (node == nullptr) return 0;
  const auto& state = part.As<toml::table>(*node, "a table: [state]");
  part.Allow(state, {"clock_ms"});
  constexpr std::string_view kExpected = "milliseconds from 0 up: clock_ms = 0";
  const toml::node* clock = state.get("clock_ms");
  if (clock == nullptr) return 0;
  const std::int64_t ms = part.As<toml::value<std::int64_t>>(*clock, kExpected).get();
  if (ms < 0) part.Fail(clock->source(), fmt::format("expected {}", kExpected));
  return static_cast<std::uint64_t>(ms);
}

}  // namespace

DeviceIdentity LoadDescription(Device& device, const fs::path& file) {
  const Description description = Split(ReadHostFile(file));
  const Part author(file, description.author, 0);
  author.Allow(author.table(), {"name", "description", "modules"});
  DeviceIdentity identity = ReadIdentity(author, file);
  const std::vector<Module> known = device.modules();
  const auto modules = ReadModules(author, known);
  const auto lines = std::count(description.author.begin(), description.author.end(), '\n');
  const Part kept(file, description.kept, static_cast<std::size_t>(lines));
  device.set_now_ms(ReadClock(kept));
  if (!modules) return identity;
  for (const Module& module : known) device.RemoveModule(module.name);
  for (const Module& module : *modules) device.InstallModule(module);
  return identity;
}

std::string WithState(const std::string& text, std::uint64_t clock_ms) {
  const Description description = Split(text);
  std::string result = description.author;
  if (description.kept.empty()) {
    if (clock_ms == 0) return text;
    if (!result.ends_with('\n')) result += '\n';
    result += '\n';
  }
  result += kMarkerLine;
  return result + fmt::format("[state]\nclock_ms = {}\n", clock_ms);
}

}  // namespace sim
