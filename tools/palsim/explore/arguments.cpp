#include "tools/palsim/explore/arguments.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

namespace palsim {
namespace {

using Numbers = std::span<const std::uint32_t>;

constexpr auto kSmall = std::to_array<std::uint32_t>({0, 1, 2, 3, 4, 5, 6, 7, 9, 10});
constexpr auto kEdges = std::to_array<std::uint32_t>(
    {0, 1, 0x7F, 0x80, 0xFF, 0x100, 0xFFFF, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF});
constexpr auto kPercent = std::to_array<std::uint32_t>({0, 1, 33, 50, 66, 99, 100, 101});
constexpr auto kMinutes =
    std::to_array<std::uint32_t>({0, 1, 2, 3, 4, 5, 6, 10, 11, 15, 30, 7, 60});
constexpr auto kSeconds = std::to_array<std::uint32_t>(
    {0, 60, 120, 121, 180, 240, 300, 360, 600, 660, 900, 1800, 59, 61});
constexpr auto kDegrees = std::to_array<std::uint32_t>({0, 90, 180, 270, 45, 360});
constexpr auto kLevels = std::to_array<std::uint32_t>({0, 1, 2, 3, 4, 5, 6});

struct UnitNumbers {
  std::string_view unit;
  Numbers numbers;
};
constexpr auto kUnits = std::to_array<UnitNumbers>({
    {"percent", kPercent},
    {"minutes", kMinutes},
    {"seconds", kSeconds},
    {"degrees", kDegrees},
    {"level", kLevels},
});

using Texts = std::span<const std::string_view>;

constexpr auto kCapabilities = std::to_array<std::string_view>(
    {"Camera", "Wifi", "Bluetooth", "InternalScanner", "Vibrate", "WWAN", "GPS", "Compass",
     "Accelerometer", "Pedometer", "camera", "Unknown"});
constexpr auto kFeatures = std::to_array<std::string_view>({"Bluetooth", "Camera", "Wifi"});
constexpr auto kFolders = std::to_array<std::string_view>({"\\Store", "\\Windows", "\\"});
constexpr auto kRegistryFiles = std::to_array<std::string_view>(
    {"RM21.reg", "all.reg", "RM11.reg", "rm18.reg", "P7.reg", "missing.reg"});
constexpr auto kMembers = std::to_array<std::string_view>({"Installer", "Nobody"});
constexpr auto kPasswords =
    std::to_array<std::string_view>({"rugged21", "Rugged21", "rugged2", "rugged211", "", "x"});
constexpr auto kPorts = std::to_array<std::string_view>({"COM1:", "COM9:"});

struct NamedTexts {
  std::string_view parameter;
  Texts texts;
};
constexpr auto kTexts = std::to_array<NamedTexts>({
    {"name", kCapabilities},
    {"feature", kFeatures},
    {"directory", kFolders},
    {"file_name", kRegistryFiles},
    {"member", kMembers},
    {"password", kPasswords},
    {"port", kPorts},
});

constexpr auto kLengths = std::to_array<std::size_t>({1, 31, 127, 128, 238, 239, 259, 260, 300});

Numbers NumbersOf(const Parameter& parameter) {
  const auto* const row = std::ranges::find(kUnits, parameter.unit, &UnitNumbers::unit);
  return row == kUnits.end() ? Numbers(kSmall) : row->numbers;
}

std::string ChooseNumber(Choices& choices, const Parameter& parameter) {
  constexpr std::size_t kUnusual = 12;
  if (choices.OneIn(kUnusual)) {
    const bool is_edge = !choices.OneIn(3);
    return std::to_string(is_edge ? choices.Of(kEdges)
                                  : static_cast<std::uint32_t>(choices.Number()));
  }
  const auto names =
      EnumeratorsOf(parameter.type == "BOOL" ? std::string_view("BOOL") : parameter.enumeration);
  if (!names.empty()) return std::string(choices.Of(names));
  return std::to_string(choices.Of(NumbersOf(parameter)));
}

std::string ChooseText(Choices& choices, const Parameter& parameter) {
  constexpr std::size_t kUnusual = 10;
  if (choices.OneIn(kUnusual)) {
    if (choices.OneIn(3)) return "null";
    if (choices.OneIn(3)) return "";
    return std::string(choices.Of(kLengths), choices.OneIn(2) ? 'n' : 'N');
  }
  const auto* const row = std::ranges::find(kTexts, parameter.name, &NamedTexts::parameter);
  return row == kTexts.end() ? "text" : std::string(choices.Of(row->texts));
}

bool IsBuffer(const Parameter& parameter) {
  return parameter.type == "char*" || parameter.type == "WCHAR*" || parameter.type == "BYTE*";
}

// The room of a buffer in units, and behind it the same in bytes.
void ChooseRoom(Choices& choices, const Parameter& buffer, std::vector<std::string>& arguments) {
  constexpr auto kBytes =
      std::to_array<std::size_t>({0, 1, 2, 3, 4, 5, 8, 10, 12, 16, 24, 26, 32, 64, 256, 510, 512});
  const std::size_t bytes = choices.OneIn(2) ? 512 : choices.Of(kBytes);
  const std::size_t unit = buffer.type == "WCHAR*" ? 2 : 1;
  arguments.push_back(choices.OneIn(12) ? "null" : std::to_string(bytes / unit));
  arguments.push_back(choices.OneIn(16) ? "null" : std::to_string(bytes));
}

std::string ChooseOne(Choices& choices, const Parameter& parameter) {
  constexpr std::size_t kNullOnceIn = 24;
  const std::string_view type = parameter.type;
  if (type == "const char*" || type == "const WCHAR*") return ChooseText(choices, parameter);
  if (type.ends_with("PALComPortPower*")) return choices.OneIn(kNullOnceIn) ? "null" : "1:2";
  if (!type.ends_with('*')) return ChooseNumber(choices, parameter);
  return choices.OneIn(kNullOnceIn) ? "null" : "out";
}

}  // namespace

std::vector<std::string> ChooseArguments(Choices& choices, const Declaration& declaration) {
  std::vector<std::string> arguments;
  const auto& parameters = declaration.parameters;
  for (std::size_t at = 0; at < parameters.size() && !parameters.at(at).type.empty(); ++at) {
    const Parameter& parameter = parameters.at(at);
    const bool has_length = IsBuffer(parameter) && at + 1 < parameters.size() &&
                            parameters.at(at + 1).direction == "in,out";
    if (has_length) {
      ChooseRoom(choices, parameter, arguments);
      ++at;
    } else {
      arguments.push_back(ChooseOne(choices, parameter));
    }
  }
  return arguments;
}

}  // namespace palsim
