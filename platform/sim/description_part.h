// Reading of device.toml: typed access to its keys, and errors with file and line.
#ifndef PLATFORM_SIM_DESCRIPTION_PART_H_
#define PLATFORM_SIM_DESCRIPTION_PART_H_

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <toml++/toml.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/audio.h"
#include "platform/sim/hardware/leds.h"

namespace sim {

// The author's part of the file, or the simulator's: errors give the line in the whole file.
class Part {
 public:
  Part(std::filesystem::path file, std::string_view text, std::size_t lines_above)
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

  [[nodiscard]] std::uint32_t Number(const toml::node& node) const {
    constexpr std::string_view kNumber = "a number from 0 to 4294967295";
    const std::int64_t number = As<toml::value<std::int64_t>>(node, kNumber).get();
    if (number < 0 || number > std::int64_t{UINT32_MAX}) {
      Fail(node.source(), fmt::format("expected {}", kNumber));
    }
    return static_cast<std::uint32_t>(number);
  }

 private:
  [[nodiscard]] toml::table Parse(std::string_view text) const {
    try {
      return toml::parse(text);
    } catch (const toml::parse_error& error) {
      Fail(error.source(), std::string(error.description()));
    }
  }

  std::filesystem::path file_;
  std::size_t lines_above_;
  toml::table table_;
};

// What the author's part holds under one key: the path of the library, [modules], and the tables
// that describe hardware. The reader of each table stands in a file of its own family.
struct DescriptionSection {
  std::string_view key;
  void (*read)(const Part& part, const toml::node& node, Device& device);
};

// A key of [state], where the simulator keeps what has changed on the device, below the marker.
struct StateEntry {
  std::string_view key;
  void (*read)(const Part& part, const toml::node& node, Device& device);
  // The value for the file; empty where the device is as the author describes it.
  std::string (*text)(Device& device);
};

void ReadAudio(const Part& part, const toml::node& node, Device& device);
void ReadModules(const Part& part, const toml::node& node, Device& device);
void ReadOneWire(const Part& part, const toml::node& node, Device& device);
void ReadConfigurationDriver(const Part& part, const toml::node& node, Device& device);
void ReadDisplay(const Part& part, const toml::node& node, Device& device);
void ReadParameters(const Part& part, const toml::node& node, Device& device);
void ReadSystem(const Part& part, const toml::node& node, Device& device);
void ReadAdapters(const Part& part, const toml::node& node, Device& device);
void ReadScanner(const Part& part, const toml::node& node, Device& device);
void ReadServices(const Part& part, const toml::node& node, Device& device);
void ReadPrograms(const Part& part, const toml::node& node, Device& device);
void ReadLeds(const Part& part, const toml::node& node, Device& device);
void ReadVibrator(const Part& part, const toml::node& node, Device& device);
void ReadInterfaces(const Part& part, const toml::node& node, Device& device);
void ReadBluetooth(const Part& part, const toml::node& node, Device& device);
void ReadAccelerometer(const Part& part, const toml::node& node, Device& device);
void ReadUsbFunction(const Part& part, const toml::node& node, Device& device);

void ReadAudioState(const Part& part, const toml::node& node, Device& device);
[[nodiscard]] std::string AudioStateText(Device& device);
void ReadBootOptionState(const Part& part, const toml::node& node, Device& device);
[[nodiscard]] std::string BootOptionStateText(Device& device);
void ReadLedsState(const Part& part, const toml::node& node, Device& device);
[[nodiscard]] std::string LedsStateText(Device& device);
void ReadRotationState(const Part& part, const toml::node& node, Device& device);
[[nodiscard]] std::string RotationStateText(Device& device);
void ReadUsbFunctionState(const Part& part, const toml::node& node, Device& device);
[[nodiscard]] std::string UsbFunctionStateText(Device& device);

void ReadScannerState(const Part& part, const toml::node& node, Device& device);
[[nodiscard]] std::string ScannerStateText(Device& device);

}  // namespace sim

#endif  // PLATFORM_SIM_DESCRIPTION_PART_H_
