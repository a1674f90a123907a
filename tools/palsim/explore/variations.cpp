#include "tools/palsim/explore/variations.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "platform/sim/hardware/hardware.h"
#include "platform/sim/text.h"
#include "platform/wince.h"
#include "tools/palsim/explore/move.h"

namespace palsim {
namespace {

constexpr auto kNumbers = std::to_array<std::uint32_t>(
    {0, 1, 2, 3, 4, 5, 9, 10, 100, 250, 2000, 0x10000, 0x33333333, 0x7FFFFFFF, 0xFFFFFFFF});
// Around what the library has room for.
constexpr auto kSizes = std::to_array<std::size_t>(
    {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 20, 63, 64, 254, 256, 258, 259, 260, 261, 512, 520, 1024});

std::string Bytes(Choices& choices) {
  std::string text = "hex";
  for (std::size_t left = choices.Of(kSizes); left > 0; --left) {
    text += fmt::format(" {:02X}", choices.Below(256));
  }
  return text;
}

std::string Text(Choices& choices) {
  constexpr std::size_t kLetters = 26;
  return '"' + std::string(choices.Of(kSizes), static_cast<char>('a' + choices.Below(kLetters))) +
         '"';
}

// Chooses one text for each "<a|b|c>" in a statement.
std::string OneOfEach(Choices& choices, std::string_view pattern) {
  std::string statement;
  for (std::size_t open = 0; (open = pattern.find('<')) != std::string_view::npos;) {
    const std::size_t close = pattern.find('>');
    std::string_view texts = pattern.substr(open + 1, close - open - 1);
    std::size_t skip = choices.Below(static_cast<std::size_t>(std::ranges::count(texts, '|')) + 1);
    for (; skip > 0; --skip) texts.remove_prefix(texts.find('|') + 1);
    statement += pattern.substr(0, open);
    statement += texts.substr(0, texts.find('|'));
    pattern.remove_prefix(close + 1);
  }
  return statement += pattern;
}

constexpr std::string_view kRegistryFile =
    R"(write \Store\<RM21|all|RM11|rm18>.reg = "REGEDIT4 ; <0|1|2|3|4|5|6|7|8>")";
// How long a flash is: longer than others wait, too.
constexpr std::string_view kFlash =
    R"(set HKLM\SOFTWARE\Dravonel\PAL\<Int|Teth|BT|RFID>GrLedOnDur = <0|250|1999|2001|5000>)";
constexpr std::string_view kTimePasses = "wait <1|50|250|2000|45000|600000|86400000> ms";

constexpr auto kVariations = std::to_array<std::string_view>({
    R"(parameter 0x00D5 = "<RM11|RM13|RM16|RM19|RM21|RM23|RMV|P7>")",
    kRegistryFile,
    kFlash,
    "no library <DVLEventLog.dll|coredll.dll|DVLORQPAL.dll>",
    "wait 4294960000 ms",  // seven seconds later the tick counter wraps around
    // A keypad with another layout, or with none.
    R"(set HKLM\Hardware\Devicemap\Keybd\CurrentActiveLayoutKey = "<Hardware\Devicemap\Keybd\Layout\Gone|Software\Dravonel\RFIDServer\Keybd|>")",
});

constexpr auto kHappenings = std::to_array<std::string_view>({
    R"(set HKLM\System\State\Hardware\Headset = <0|1>)",
    R"(set HKLM\System\State\Hardware\Bluetooth = <0|4|16|52|8>)",
    "dock is <taken|attached>",
    R"(set HKLM\Software\Dravonel\Policy\Disable<ImageCapture|Bluetooth> = <0|1|2>)",
    "signal <DVL_KEYBOARD_CHANGE_USB|LED_ON_TIMEOUT|DVLRegFlushKeyAll>",
    "signal <DVL_KEYBOARD_CHANGE_USB|LED_ON_TIMEOUT|DVLRegFlushKeyAll>",
    "set volume = <0|858993459|3435973836|65535>",
    "set gain = <0|33|66|99|100>",
    kRegistryFile,
    kFlash,
    kTimePasses,
    kTimePasses,
});

struct Place {
  const sim::RegistryKey* key;
  const sim::RegistryValue* value;

  // HKEY_LOCAL_MACHINE\Key\Name
  [[nodiscard]] std::string Name() const {
    return WordText(sim::ToUtf8(key->Path()) + '\\' + sim::ToUtf8(value->name));
  }
};

void Collect(const sim::RegistryKey& key, std::vector<Place>& places) {
  for (const sim::RegistryValue& value : key.values()) places.push_back({&key, &value});
  for (const auto& below : key.keys()) Collect(*below, places);
}

std::vector<Place> PlacesOf(sim::Device& device) {
  constexpr unsigned kRootKeys = 4;
  std::vector<Place> places;
  for (unsigned root = 0; root < kRootKeys; ++root) {
    Collect(*device.registry().root(root), places);
  }
  return places;
}

// A value that looks right and is not: one byte is another one, and often the last.
std::string ChooseNearMiss(Choices& choices, std::vector<Place> places) {
  std::erase_if(places, [](const Place& place) {
    return place.value->type != REG_BINARY || place.value->data.empty();
  });
  if (places.empty()) return "no driver SCD1:";
  const Place& place = choices.Of(places);
  std::vector<std::uint8_t> bytes = place.value->data;
  const std::size_t at = choices.OneIn(2) ? bytes.size() - 1 : choices.Below(bytes.size());
  bytes[at] ^= static_cast<std::uint8_t>(1 + choices.Below(255));
  return fmt::format("set {} = hex {:02X}", place.Name(), fmt::join(bytes, " "));
}

std::string ChooseParameter(Choices& choices, sim::Device& device) {
  std::vector<std::uint16_t> ids;
  for (const auto& [id, answer] : device.hardware().parameters) ids.push_back(id);
  if (ids.empty()) return "no parameter 0x00D5";
  const std::uint16_t id = choices.Of(ids);
  if (choices.OneIn(2)) return fmt::format("no parameter {:#06x}", id);
  return fmt::format("parameter {:#06x} = {}", id,
                     choices.OneIn(2) ? Bytes(choices) : Text(choices));
}

std::string ChooseDriver(Choices& choices, sim::Device& device) {
  const auto& drivers = device.hardware().drivers;
  if (drivers.empty()) return "no driver SCD1:";
  return "no driver " + WordText(choices.Of(drivers)->name());
}

std::string ChooseFile(Choices& choices) {
  constexpr std::array kFiles{
      R"(\ConfigStore\dcecfg)", R"(\ConfigStore\datacoll)",        R"(\ConfigStore\BMN0)",
      R"(\ConfigStore\DCEDPM)", R"(\Windows\Sounds\goodread.wav)", R"(\Windows\orqautoreg.exe)",
      R"(\Windows\ril.dll)"};
  const char* const file = choices.Of(kFiles);
  if (choices.OneIn(2)) return fmt::format("remove {}", file);
  return fmt::format("write {} = {}", file, Text(choices));
}

// What a call can fail with beside the error 31.
struct CallErrors {
  std::string_view call;
  std::array<std::uint32_t, 3> errors;
};
constexpr auto kFaults = std::to_array<CallErrors>({
    {"RegOpenKeyExW", {2, 5, 14}},
    {"RegCreateKeyExW", {5, 14, 31}},
    {"RegQueryValueExW", {2, 5, 234}},
    {"RegSetValueExW", {5, 14, 112}},
    {"RegDeleteValueW", {2, 5, 31}},
    {"RegDeleteKeyW", {2, 5, 31}},
    {"RegEnumKeyExW", {5, 234, 259}},
    {"RegEnumValueW", {5, 234, 259}},
    {"CreateFileW", {2, 5, 32}},
    {"ReadFile", {5, 38, 31}},
    {"WriteFile", {5, 112, 31}},
    {"DeviceIoControl", {1, 50, 87}},
    {"KernelIoControl", {50, 87, 31}},
    {"CreateMutexW", {6, 14, 31}},
    {"CreateEventW", {6, 14, 31}},
    {"EventModify", {6, 31, 5}},
    {"WaitForSingleObject", {6, 258, 31}},
    {"CreateThread", {8, 14, 31}},
    {"CreateProcessW", {2, 8, 31}},
    {"LoadLibraryW", {8, 126, 31}},
    {"GetProcAddressW", {127, 31, 14}},
    {"malloc", {14, 14, 14}},
    {"SystemParametersInfoW", {50, 87, 31}},
    {"CryptAcquireContextW", {5, 0x80090016, 31}},
    {"PlaySoundW", {31, 14, 5}},
    {"waveOutSetVolume", {31, 5, 6}},
    {"waveInMessage", {31, 5, 6}},
    {"NLedSetDevice", {31, 5, 87}},
});

}  // namespace

std::string ChooseRegistryChange(Choices& choices, sim::Device& device) {
  std::vector<Place> places = PlacesOf(device);
  const std::size_t kind = choices.Below(6);
  if (places.empty() || kind == 0) return ChooseNearMiss(choices, std::move(places));
  const Place& place = choices.Of(places);
  if (kind == 1) return fmt::format("set {} = {}", place.Name(), Bytes(choices));
  if (kind == 2) return fmt::format("set {} = {}", place.Name(), Text(choices));
  if (kind == 3 || (kind == 4 && place.value->type == REG_DWORD)) {
    return fmt::format("set {} = {}", place.Name(), choices.Of(kNumbers));
  }
  return fmt::format("delete {}", place.Name());
}

std::string ChooseVariation(Choices& choices, sim::Device& device) {
  switch (choices.Below(9)) {
    case 0:
      return ChooseParameter(choices, device);
    case 1:
      return ChooseFile(choices);
    case 2:
      return ChooseDriver(choices, device);
    case 3:
    case 4:
    case 5:
      return OneOfEach(choices, choices.Of(kVariations));
    default:
      return ChooseRegistryChange(choices, device);
  }
}

std::string ChooseHappening(Choices& choices, sim::Device& device) {
  constexpr std::size_t kRestartsOnceIn = 50;
  if (choices.OneIn(kRestartsOnceIn)) return OneOfEach(choices, "restart <cold|warm>");
  if (choices.OneIn(kHappenings.size() + 1)) return ChooseRegistryChange(choices, device);
  return OneOfEach(choices, choices.Of(kHappenings));
}

std::string ChooseFault(Choices& choices) {
  constexpr std::size_t kMostCalls = 60;
  if (choices.OneIn(3)) {
    return fmt::format("fail call {} of any", 1 + choices.Below(kMostCalls));
  }
  const CallErrors& fault = choices.Of(kFaults);
  if ((fault.call == "ReadFile" || fault.call == "WriteFile") && choices.OneIn(3)) {
    return fmt::format("call 1 of {} moves {} bytes", fault.call, choices.Below(4));
  }
  const std::string which =
      choices.OneIn(4) ? "every call" : fmt::format("call {}", 1 + choices.Below(8));
  return fmt::format("fail {} of {} with error {}", which, fault.call, choices.Of(fault.errors));
}

std::string ChooseKill(Choices& choices) {
  constexpr std::size_t kMostCalls = 60;
  return fmt::format("kill at call {} of any", 1 + choices.Below(kMostCalls));
}

}  // namespace palsim
