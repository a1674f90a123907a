#include "tools/palsim/explore/variations.h"

#include <fmt/format.h>

#include <array>
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

struct Place {
  std::string value;  // HKEY_LOCAL_MACHINE\Key\Name
  bool is_number;
};

void Collect(const sim::RegistryKey& key, std::vector<Place>& places) {
  for (const sim::RegistryValue& value : key.values()) {
    places.push_back(
        {sim::ToUtf8(key.Path()) + '\\' + sim::ToUtf8(value.name), value.type == REG_DWORD});
  }
  for (const auto& below : key.keys()) Collect(*below, places);
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

std::string ChooseLibrary(Choices& choices) {
  constexpr std::array kLibraries{"DVLEventLog.dll", "coredll.dll", "DVLORQPAL.dll"};
  return fmt::format("no library {}", choices.Of(kLibraries));
}

std::string ChooseModel(Choices& choices) {
  constexpr std::array kModels{"RM11", "RM13", "RM16", "RM19", "RM21", "RM23", "RMV", "P7"};
  return fmt::format("parameter 0x00D5 = \"{}\"", choices.Of(kModels));
}

// A keypad with another layout, or with none.
std::string ChooseLayout(Choices& choices) {
  constexpr std::array kLayouts{"Hardware\\Devicemap\\Keybd\\Layout\\Gone",
                                "Software\\Dravonel\\RFIDServer\\Keybd", ""};
  return fmt::format(R"(set HKLM\Hardware\Devicemap\Keybd\CurrentActiveLayoutKey = "{}")",
                     choices.Of(kLayouts));
}

// How long a flash is: longer than others wait, too.
std::string ChooseFlash(Choices& choices) {
  constexpr std::array kScanTypes{"Int", "Teth", "BT", "RFID"};
  constexpr auto kTimes = std::to_array<unsigned>({0, 250, 1999, 2001, 5000});
  return fmt::format(R"(set HKLM\SOFTWARE\Dravonel\PAL\{}GrLedOnDur = {})", choices.Of(kScanTypes),
                     choices.Of(kTimes));
}

std::string ChooseRegistryFile(Choices& choices) {
  constexpr std::array kFiles{"RM21.reg", "all.reg", "RM11.reg", "rm18.reg"};
  return fmt::format(R"(write \Store\{} = "REGEDIT4 ; {}")", choices.Of(kFiles), choices.Below(9));
}

std::string ChoosePolicy(Choices& choices) {
  constexpr std::array kPolicies{"DisableImageCapture", "DisableBluetooth"};
  return fmt::format(R"(set HKLM\Software\Dravonel\Policy\{} = {})", choices.Of(kPolicies),
                     choices.Below(3));
}

std::string ChooseHeadset(Choices& choices) {
  if (choices.OneIn(2)) {
    return fmt::format(R"(set HKLM\System\State\Hardware\Headset = {})", choices.Below(2));
  }
  constexpr auto kBits = std::to_array<unsigned>({0, 4, 0x10, 0x34, 8});
  return fmt::format(R"(set HKLM\System\State\Hardware\Bluetooth = {})", choices.Of(kBits));
}

std::string ChooseSignal(Choices& choices) {
  constexpr std::array kEvents{"DVL_KEYBOARD_CHANGE_USB", "LED_ON_TIMEOUT", "DVLRegFlushKeyAll"};
  return fmt::format("signal {}", choices.Of(kEvents));
}

std::string ChooseLevel(Choices& choices) {
  constexpr auto kVolumes = std::to_array<std::uint32_t>({0, 0x33333333, 0xCCCCCCCC, 0xFFFF});
  return choices.OneIn(2) ? fmt::format("set volume = {}", choices.Of(kVolumes))
                          : fmt::format("set gain = {}", choices.Below(101));
}

std::string ChooseRestart(Choices& choices) {
  return choices.OneIn(2) ? "restart cold" : "restart warm";
}

std::string ChooseTime(Choices& choices) {
  constexpr auto kTimes = std::to_array<unsigned>({1, 50, 250, 2000, 45000, 600000, 86400000});
  return fmt::format("wait {} ms", choices.Of(kTimes));
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
  constexpr unsigned kRootKeys = 4;
  std::vector<Place> places;
  for (unsigned root = 0; root < kRootKeys; ++root) {
    Collect(*device.registry().root(root), places);
  }
  if (places.empty()) return "no driver SCD1:";
  const Place& place = choices.Of(places);
  const std::string value = WordText(place.value);
  const std::size_t kind = choices.Below(8);
  if (kind == 0) return fmt::format("delete {}", value);
  if (kind == 1) return fmt::format("set {} = {}", value, Bytes(choices));
  if (kind == 2) return fmt::format("set {} = {}", value, Text(choices));
  if (place.is_number || kind == 3) {
    return fmt::format("set {} = {}", value, choices.Of(kNumbers));
  }
  return fmt::format("delete {}", value);
}

std::string ChooseVariation(Choices& choices, sim::Device& device) {
  switch (choices.Below(10)) {
    case 0:
      return ChooseParameter(choices, device);
    case 1:
      return ChooseFile(choices);
    case 2:
      return choices.OneIn(2) ? ChooseDriver(choices, device) : ChooseLibrary(choices);
    case 3:
      return choices.OneIn(2) ? ChooseModel(choices) : ChooseRegistryFile(choices);
    case 4:
      return ChooseLayout(choices);
    case 5:
      return ChooseFlash(choices);
    default:
      return ChooseRegistryChange(choices, device);
  }
}

std::string ChooseHappening(Choices& choices, sim::Device& device) {
  switch (choices.Below(12)) {
    case 0:
    case 1:
      return ChooseHeadset(choices);
    case 2:
      return choices.OneIn(2) ? "dock is taken" : "dock is attached";
    case 3:
      return ChoosePolicy(choices);
    case 4:
    case 5:
      return ChooseSignal(choices);
    case 6:
      return ChooseLevel(choices);
    case 7:
      return choices.OneIn(4) ? ChooseRestart(choices) : ChooseTime(choices);
    case 8:
      return choices.OneIn(2) ? ChooseRegistryFile(choices) : ChooseFlash(choices);
    case 9:
      return ChooseRegistryChange(choices, device);
    default:
      return ChooseTime(choices);
  }
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
