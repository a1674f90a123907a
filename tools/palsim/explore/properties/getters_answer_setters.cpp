#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>

#include "platform/sim/hardware/hardware.h"
#include "platform/sim/text.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/keypad_layout.h"

namespace palsim {
namespace {

using Answer = std::optional<std::uint32_t>;  // nothing: it cannot be told

Answer AsItIs(Scene& /*scene*/, std::uint32_t number) {
  return number;
}

Answer LowByte(Scene& /*scene*/, std::uint32_t number) {
  return number & 0xFF;
}

Answer OneForOne(Scene& /*scene*/, std::uint32_t number) {
  return number == 1 ? 1 : 0;
}

Answer PowerButton(Scene& /*scene*/, std::uint32_t option) {
  constexpr std::uint32_t kLast = 5;
  return option <= kLast ? option : 0;
}

// The lowest level with the same word. A step is not told, nor a level where another one's word
// cannot be read: each process has its own word for that one.
Answer Level(Scene& scene, std::uint32_t index) {
  constexpr const char* kVolumes = R"(HKLM\Software\Dravonel\BeeperVol)";
  constexpr std::array kLevels{"Off", "VeryLow", "Low", "Med", "High", "VeryHigh"};
  if (index >= kLevels.size()) return std::nullopt;
  std::array<Answer, kLevels.size()> words;
  std::ranges::transform(kLevels, words.begin(),
                         [&](const char* name) { return scene.Dword(kVolumes, name); });
  if (std::ranges::count(words, Answer()) != 0) return std::nullopt;
  return static_cast<std::uint32_t>(std::ranges::find(words, words.at(index)) - words.begin());
}

template <std::uint32_t... kAllowed>
Answer IfAllowed(Scene& /*scene*/, std::uint32_t number) {
  return ((number == kAllowed) || ...) ? Answer(number) : std::nullopt;
}

// 0 also where the layout has no shift key, or where the driver's key cannot be read as one.
Answer ShiftBehavior(Scene& scene, std::uint32_t behavior) {
  constexpr std::size_t kShiftKeyBytes = 4;
  const auto key = scene.registry().Find(ActiveLayout(scene.registry()) + R"(\ShiftKeys)");
  if (key == nullptr) return std::nullopt;
  for (const sim::RegistryValue& value : key->values()) {
    const bool is_shift_key = sim::EqualNoCase(value.name.substr(0, 8), u"ShiftKey");
    if (is_shift_key && value.data.size() == kShiftKeyBytes && value.type == 3) return behavior;
  }
  return 0;
}

// Whether any driver has a text for USB disks, which a setter cannot give it. One that is too long
// is the getter's failure.
Answer UsbDisks(Scene& scene, std::uint32_t enable) {
  constexpr std::size_t kMostBytes = 520;
  if (enable == 0) return 0;
  const auto key = scene.registry().Find(R"(HKLM\Drivers\USB\ClientDrivers\Mass_Storage_Class)");
  if (key == nullptr) return std::nullopt;
  std::uint32_t answer = 0;
  for (const auto& driver : key->keys()) {
    const sim::RegistryValue* const text = driver->FindValue(u"Dll");
    if (text == nullptr) continue;
    if (text->data.size() > kMostBytes) return std::nullopt;
    answer = 1;
  }
  return answer;
}

Answer ImageCapture(Scene& scene, std::uint32_t enable) {
  constexpr std::uint16_t kAit = 0x00D7;
  const auto& parameters = scene.device().hardware().parameters;
  const auto ait = parameters.find(kAit);
  const bool is_built_so =
      ait == parameters.end() ||
      std::ranges::all_of(ait->second.bytes, [](std::uint8_t byte) { return byte == 0; });
  if (!is_built_so) return std::nullopt;
  return enable != 0 ? 1 : 2;
}

constexpr std::size_t kNone = 9;

// What a setter stores, a getter answers. Settings of the same slot are one.
struct Pair {
  std::string_view slot;
  std::string_view setter;
  std::size_t value;  // the argument of the setter that is stored
  std::string_view getter;
  std::size_t selector = kNone;  // the argument of both that chooses one of several
  std::uint32_t selected = 0;    // the one that is meant where none is chosen
  Answer (*answer)(Scene& scene, std::uint32_t number) = &AsItIs;
};

constexpr auto kPairs = std::to_array<Pair>({
    {"volume", "PALBEEPSetVolume", 0, "PALBEEPGetVolume", kNone, 0, &Level},
    {"headset", "PALBEEPSetHeadsetBeeperVolume", 0, "PALBEEPGetHeadsetBeeperVolume", kNone, 0,
     &Level},
    {"gain", "PALBEEPSetSpeakerGain", 1, "PALBEEPGetSpeakerGain", 0},
    {"gain", "PALBEEPSetHeadsetGain", 0, "PALBEEPGetHeadsetGain", kNone, 8},
    {"good read", "PALBEEPSetGRI", 1, "PALBEEPGetGRI", 0},
    {"vibration", "PALVIBSetVibratePreset", 0, "PALVIBGetVibratePreset"},
    {"off on battery", "PALPWRSetDeviceOff_Batt", 0, "PALPWRGetDeviceOff_Batt"},
    {"off on power", "PALPWRSetDeviceOff_ExtPwr", 0, "PALPWRGetDeviceOff_ExtPwr"},
    {"screen on battery", "PALPWRSetScreenOff_Batt", 0, "PALPWRGetScreenOff_Batt", kNone, 0,
     &IfAllowed<0, 60, 120, 180, 240, 300, 360, 660>},
    {"screen on power", "PALPWRSetScreenOff_ExtPwr", 0, "PALPWRGetScreenOff_ExtPwr", kNone, 0,
     &IfAllowed<0, 60, 120, 121, 180, 240, 300, 360, 600, 660, 900, 1800>},
    {"boot option", "PALPWRSetBootOption", 0, "PALPWRGetBootOption"},
    {"power button", "PALPWRSetPwrButton", 0, "PALPWRGetPwrButton", kNone, 0, &PowerButton},
    {"ambient", "PALDISPSetDisplayBrightnessAmbient", 0, "PALDISPGetDisplayBrightnessAmbient"},
    {"low light", "PALDISPSetLowLightDisplayBrightnessDelta", 0,
     "PALDISPGetLowLightDisplayBrightnessDelta"},
    {"bright light", "PALDISPSetBrightLightDisplayBrightnessDelta", 0,
     "PALDISPGetBrightLightDisplayBrightnessDelta"},
    {"keypad light", "PALDISPSetKeypadBacklightMode", 0, "PALDISPGetKeypadBacklightMode"},
    {"keypad threshold", "PALDISPSetKeypadBacklightAmbient", 0, "PALDISPGetKeypadBacklightAmbient"},
    {"orientation", "PALDISPSetOrientation", 0, "PALDISPGetOrientation"},
    {"input panel", "PALDISPSetSIPDock", 0, "PALDISPGetSIPDock"},
    {"tap", "PALDISPSetScreenTapVol", 0, "PALDISPGetScreenTapVol"},
    {"click", "PALKEYSetKeyTapVol", 0, "PALKEYGetKeyTapVol"},
    {"action", "PALKEYSetButtonAction", 1, "PALKEYGetButtonAction", 0},
    {"shift", "PALKEYSetShiftBehavior", 0, "PALKEYGetShiftBehavior", kNone, 0, &ShiftBehavior},
    {"status", "PALMFGOpt_SetDPMStatus", 1, "PALMFGOpt_GetDPMStatus", 0, 0, &LowByte},
    {"cab", "PALSecurity_SetCabFilePasswordProtect", 0, "PALSecurity_GetCabFilePasswordProtect",
     kNone, 0, &OneForOne},
    {"usb", "PALStore_SetUsbFuncDriver", 0, "PALStore_GetUsbFuncDriver"},
    {"usb disks", "PALStore_SetUsbHostMassStorageEnable", 0, "PALStore_GetUsbHostMassStorageEnable",
     kNone, 0, &UsbDisks},
    {"image capture", "PALImageCapture_SetEnable", 0, "PALImageCaptureGetStatus", kNone, 0,
     &ImageCapture},
});

// The row of each export: as a setter, or as a getter.
std::vector<const Pair*> RowsBy(std::string_view Pair::*part) {
  std::vector<const Pair*> rows;
  for (const std::string_view name : ExportNames()) {
    const auto* const row = std::ranges::find(kPairs, name, part);
    rows.push_back(row == kPairs.end() ? nullptr : row);
  }
  return rows;
}

using Slot = std::pair<std::string_view, std::uint32_t>;

Slot SlotOf(const Pair& pair, const WatchedCall& call) {
  if (pair.selector == kNone) return {pair.slot, pair.selected};
  const std::uint32_t chosen = call.Number(pair.selector);
  // Two statuses are kept: of scan type 4, and of all others.
  if (pair.slot == "status") return {pair.slot, chosen == 4 ? 1U : 0U};
  return {pair.slot, chosen};
}

class Settings : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    static const std::vector<const Pair*> setters = RowsBy(&Pair::setter);
    static const std::vector<const Pair*> getters = RowsBy(&Pair::getter);
    if (const Pair* pair = setters[call.export_index]) Store(scene, *pair, call);
    if (const Pair* pair = getters[call.export_index]) Compare(*pair, call);
    if (call.name == "PALKEYInit") stored_.clear();  // it may repair the keypad
  }
  void DeviceChanged(Scene& /*scene*/) override { stored_.clear(); }

  void Store(Scene& scene, const Pair& pair, const WatchedCall& call) {
    const Slot slot = SlotOf(pair, call);
    const bool is_stored = call.undisturbed() && call.returned() && call.outcome->code == 0;
    const Answer answer = is_stored ? pair.answer(scene, call.Number(pair.value)) : std::nullopt;
    stored_.erase(slot);
    if (answer) stored_.emplace(slot, *answer);
  }

  void Compare(const Pair& pair, const WatchedCall& call) {
    const auto stored = stored_.find(SlotOf(pair, call));
    if (stored == stored_.end() || !call.undisturbed() || !call.returned()) return;
    const std::size_t place = pair.selector == kNone ? 0 : 1;
    if (call.arguments->at(place) == "null") return;
    Met();
    const std::uint32_t answer = call.outcome->numbers.at(place);
    if (call.outcome->code == 0 && answer == stored->second) return;
    Violated(fmt::format("{} stored {}, and {} answers {} with the result {:#x}", pair.setter,
                         stored->second, call.name, answer, call.outcome->code));
  }

  std::map<Slot, std::uint32_t> stored_;
};

}  // namespace

std::unique_ptr<Property> GettersAnswerSetters() {
  return std::make_unique<Settings>();
}

}  // namespace palsim
