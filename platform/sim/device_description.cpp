#include "platform/sim/device_description.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <string_view>
#include <vector>

#include "platform/sim/description_part.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/host_file.h"

namespace sim {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kMarker = "# Kept by the simulator";
constexpr std::string_view kMarkerLine = "# Kept by the simulator: do not edit below.\n";

void ReadLibrary(const Part& part, const toml::node& node, Device& device) {
  constexpr std::string_view kExpected =
      R"(a path from the root: library = '\Windows\library.dll')";
  const std::string& path = part.As<toml::value<std::string>>(node, kExpected).get();
  if (!path.starts_with('\\') || path.ends_with('\\') || !FileSystem::IsPathAllowed(path)) {
    part.Fail(node.source(), fmt::format("expected {}", kExpected));
  }
  device.set_library_path(path);
}

constexpr std::array kSections{
    DescriptionSection{"modules", &ReadModules},
    DescriptionSection{"library", &ReadLibrary},
    DescriptionSection{"configuration_driver", &ReadConfigurationDriver},
    DescriptionSection{"display", &ReadDisplay},
    DescriptionSection{"one_wire", &ReadOneWire},
    DescriptionSection{"parameters", &ReadParameters},
    DescriptionSection{"system", &ReadSystem},
    DescriptionSection{"adapters", &ReadAdapters},
    DescriptionSection{"programs", &ReadPrograms},
    DescriptionSection{"scanner", &ReadScanner},
    DescriptionSection{"services", &ReadServices},
    DescriptionSection{"audio", &ReadAudio},
    DescriptionSection{"leds", &ReadLeds},
    DescriptionSection{"vibrator", &ReadVibrator},
    DescriptionSection{"interfaces", &ReadInterfaces},
    DescriptionSection{"bluetooth", &ReadBluetooth},
    DescriptionSection{"accelerometer", &ReadAccelerometer},
    DescriptionSection{"usb_function", &ReadUsbFunction},
};

// The two parts of device.toml.
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

std::size_t ReadRunsKept(const Part& part, const toml::node& node) {
  constexpr std::string_view kExpected = R"(a number of runs from 1 up: keep = "20 runs")";
  constexpr std::size_t kMost = 999999;
  const auto& table = part.As<toml::table>(node, "a table: [journal]");
  part.Allow(table, {"keep"});
  const toml::node* keep = table.get("keep");
  if (keep == nullptr) return DeviceIdentity().runs_kept;
  const std::string& text = part.As<toml::value<std::string>>(*keep, kExpected).get();
  std::size_t runs = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), runs);
  const std::string_view unit(end, text.data() + text.size());
  if (error != std::errc() || runs == 0 || runs > kMost || (unit != " runs" && unit != " run")) {
    part.Fail(keep->source(), fmt::format("expected {}", kExpected));
  }
  return runs;
}

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
  if (const toml::node* journal = part.table().get("journal")) {
    identity.runs_kept = ReadRunsKept(part, *journal);
  }
  return identity;
}

// A library with the entries that the list names, and no others.
Module WithEntries(const Part& part, const Module& known, const toml::node& list) {
  constexpr std::string_view kExpected = R"(a list of entry names: ["...", "..."])";
  Module module{known.name, {}, known.folder};
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

void ReadClock(const Part& part, const toml::node& node, Device& device) {
  constexpr std::string_view kExpected = "milliseconds from 0 up: clock_ms = 0";
  const std::int64_t ms = part.As<toml::value<std::int64_t>>(node, kExpected).get();
  if (ms < 0) part.Fail(node.source(), fmt::format("expected {}", kExpected));
  device.set_now_ms(static_cast<std::uint64_t>(ms));
}

std::string ClockText(Device& device) {
  return device.now_ms() == 0 ? std::string() : fmt::format("{}", device.now_ms());
}

constexpr std::array kStateEntries{
    StateEntry{"clock_ms", &ReadClock, &ClockText},
    StateEntry{"audio", &ReadAudioState, &AudioStateText},
    StateEntry{"boot_option", &ReadBootOptionState, &BootOptionStateText},
    StateEntry{"leds", &ReadLedsState, &LedsStateText},
    StateEntry{"rotation", &ReadRotationState, &RotationStateText},
    StateEntry{"scanner", &ReadScannerState, &ScannerStateText},
    StateEntry{"usb_function", &ReadUsbFunctionState, &UsbFunctionStateText},
};

void ReadState(const Part& part, Device& device) {
  part.Allow(part.table(), {"state"});
  const toml::node* node = part.table().get("state");
  if (node == nullptr) return;
  const auto& state = part.As<toml::table>(*node, "a table: [state]");
  std::vector<std::string_view> allowed;
  allowed.reserve(kStateEntries.size());
  for (const StateEntry& entry : kStateEntries) allowed.push_back(entry.key);
  part.Allow(state, allowed);
  for (const StateEntry& entry : kStateEntries) {
    if (const toml::node* kept = state.get(entry.key)) entry.read(part, *kept, device);
  }
}

}  // namespace

// Keeps those built-in libraries of the device that the table names.
void ReadModules(const Part& part, const toml::node& node, Device& device) {
  const std::vector<Module> known = device.modules();
  std::vector<std::string_view> names;
  std::transform(known.begin(), known.end(), std::back_inserter(names),
                 [](const Module& module) -> std::string_view { return module.name; });
  const auto& table =
      part.As<toml::table>(node, "a table of libraries with lists of their entries");
  part.Allow(table, names);
  for (const Module& module : known) {
    const toml::node* list = table.get(module.name);
    if (list == nullptr) {
      device.RemoveModule(module.name);
    } else {
      device.InstallModule(WithEntries(part, module, *list));
    }
  }
}

DeviceIdentity LoadDescription(Device& device, const fs::path& file) {
  const Description description = Split(ReadHostFile(file));
  const Part author(file, description.author, 0);
  std::vector<std::string_view> allowed{"name", "description"};
  for (const DescriptionSection& section : kSections) allowed.push_back(section.key);
  allowed.emplace_back("journal");
  author.Allow(author.table(), allowed);
  DeviceIdentity identity = ReadIdentity(author, file);
  for (const DescriptionSection& section : kSections) {
    const toml::node* node = author.table().get(section.key);
    if (node != nullptr) section.read(author, *node, device);
  }
  const auto lines = std::count(description.author.begin(), description.author.end(), '\n');
  const Part kept(file, description.kept, static_cast<std::size_t>(lines));
  ReadState(kept, device);
  return identity;
}

std::string AuthorsPart(const std::string& text) {
  std::string part = Split(text).author;
  part.erase(part.find_last_not_of("\r\n") + 1);
  return part;
}

std::string WithState(const std::string& text, Device& device) {
  const Description description = Split(text);
  std::string state;
  for (const StateEntry& entry : kStateEntries) {
    const std::string value = entry.text(device);
    if (!value.empty()) state += fmt::format("{} = {}\n", entry.key, value);
  }
  std::string result = description.author;
  if (description.kept.empty()) {
    if (state.empty()) return text;
    if (!result.ends_with('\n')) result += '\n';
    result += '\n';
  }
  return fmt::format("{}{}[state]\n{}", result, kMarkerLine, state);
}

}  // namespace sim
