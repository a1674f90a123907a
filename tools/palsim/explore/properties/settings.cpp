// What is set stays: until it is set otherwise, and over a beep.
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

using SettingAnswer = std::optional<std::uint32_t>;  // nothing: it cannot be told

SettingAnswer AsItIs(Scene& /*scene*/, std::uint32_t number) {
  return number;
}

SettingAnswer LowByte(Scene& /*scene*/, std::uint32_t number) {
  return number & 0xFF;
}

SettingAnswer OneForOne(Scene& /*scene*/, std::uint32_t number) {
  return number == 1 ? 1 : 0;
}

SettingAnswer PowerButton(Scene& /*scene*/, std::uint32_t option) {
  constexpr std::uint32_t kLast = 5;
  return option <= kLast ? option : 0;
}

// The lowest level that has the same word. Nothing for a step, and nothing if the word of any level
// cannot be read: each process then has a word of its own for that level.
SettingAnswer Level(Scene& scene, std::uint32_t index) {
  constexpr const char* kVolumes = R"(HKLM\Software\Dravonel\BeeperVol)";
  constexpr std::array kLevels{"Off", "VeryLow", "Low", "Med", "High", "VeryHigh"};
  if (index >= kLevels.size()) return std::nullopt;
  std::array<SettingAnswer, kLevels.size()> words;
  std::ranges::transform(kLevels, words.begin(),
                         [&](const char* name) { return scene.Dword(kVolumes, name); });
  if (std::ranges::count(words, SettingAnswer()) != 0) return std::nullopt;
  return static_cast<std::uint32_t>(std::ranges::find(words, words.at(index)) - words.begin());
}

template <std::uint32_t... kAllowed>
SettingAnswer IfAllowed(Scene& /*scene*/, std::uint32_t number) {
  return ((number == kAllowed) || ...) ? SettingAnswer(number) : std::nullopt;
}

// 0 also where the layout has no shift key, or where the driver's key cannot be read as one.
SettingAnswer ShiftBehavior(Scene& scene, std::uint32_t behavior) {
  constexpr std::size_t kShiftKeyBytes = 4;
  const auto key = scene.registry().Find(ActiveLayout(scene.registry()) + R"(\ShiftKeys)");
  if (key == nullptr) return std::nullopt;
  for (const sim::RegistryValue& value : key->values()) {
    const bool is_shift_key = sim::EqualNoCase(value.name.substr(0, 8), u"ShiftKey");
    if (is_shift_key && value.data.size() == kShiftKeyBytes && value.type == 3) return behavior;
  }
  return 0;
}

// 1 if any driver has the text "Dll", which no setter makes. Nothing if the text is too long: the
// getter fails then.
SettingAnswer UsbDisks(Scene& scene, std::uint32_t enable) {
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

SettingAnswer ImageCapture(Scene& scene, std::uint32_t enable) {
  constexpr std::uint16_t kAit = 0x00D7;
  const auto& parameters = scene.device.hardware().parameters;
  const auto ait = parameters.find(kAit);
  const bool is_built_so =
      ait == parameters.end() ||
      std::ranges::all_of(ait->second.bytes, [](std::uint8_t byte) { return byte == 0; });
  if (!is_built_so) return std::nullopt;
  return enable != 0 ? 1 : 2;
}

// What a setter stores, its getter answers. The setter's last argument is stored; of two, the first
// chooses one of several, for the getter too.
struct Setting {
  std::string_view setter;
  SettingAnswer (*answer)(Scene& scene, std::uint32_t number) = &AsItIs;
  std::string_view getter{};   // empty: named as the setter is
  std::string_view same_as{};  // the setter of which it is one of several,
  std::uint32_t selected = 0;  // and which of them
};

constexpr auto kSettings = std::to_array<Setting>({
    {"PALBEEPSetVolume", &Level},
    {"PALBEEPSetHeadsetBeeperVolume", &Level},
    {"PALBEEPSetSpeakerGain"},
    {"PALBEEPSetHeadsetGain", &AsItIs, "", "PALBEEPSetSpeakerGain", 8},
    {"PALBEEPSetGRI"},
    {"PALVIBSetVibratePreset"},
    {"PALPWRSetDeviceOff_Batt"},
    {"PALPWRSetDeviceOff_ExtPwr"},
    {"PALPWRSetScreenOff_Batt", &IfAllowed<0, 60, 120, 180, 240, 300, 360, 660>},
    {"PALPWRSetScreenOff_ExtPwr",
     &IfAllowed<0, 60, 120, 121, 180, 240, 300, 360, 600, 660, 900, 1800>},
    {"PALPWRSetBootOption"},
    {"PALPWRSetPwrButton", &PowerButton},
    {"PALDISPSetDisplayBrightnessAmbient"},
    {"PALDISPSetLowLightDisplayBrightnessDelta"},
    {"PALDISPSetBrightLightDisplayBrightnessDelta"},
    {"PALDISPSetKeypadBacklightMode"},
    {"PALDISPSetKeypadBacklightAmbient"},
    {"PALDISPSetOrientation"},
    {"PALDISPSetSIPDock"},
    {"PALDISPSetScreenTapVol"},
    {"PALKEYSetKeyTapVol"},
    {"PALKEYSetButtonAction"},
    {"PALKEYSetShiftBehavior", &ShiftBehavior},
    {"PALMFGOpt_SetDPMStatus", &LowByte},
    {"PALSecurity_SetCabFilePasswordProtect", &OneForOne},
    {"PALStore_SetUsbFuncDriver"},
    {"PALStore_SetUsbHostMassStorageEnable", &UsbDisks},
    {"PALImageCapture_SetEnable", &ImageCapture, "PALImageCaptureGetStatus"},
});

std::string GetterOf(const Setting& setting) {
  if (!setting.getter.empty()) return std::string(setting.getter);
  std::string getter(setting.setter);
  getter.at(getter.find("Set")) = 'G';
  return getter;
}

// By export: the setting that it sets, and the one that it gets.
struct SettingsOfExports {
  std::vector<const Setting*> set;
  std::vector<const Setting*> get;
};

const SettingsOfExports& Settings() {
  static const SettingsOfExports all = [] {
    const std::size_t exports = ExportNames().size();
    SettingsOfExports made{std::vector<const Setting*>(exports),
                           std::vector<const Setting*>(exports)};
    for (const Setting& setting : kSettings) {
      made.set[ExportIndex(setting.setter)] = &setting;
      made.get[ExportIndex(GetterOf(setting))] = &setting;
    }
    return made;
  }();
  return all;
}

using Slot = std::pair<std::string_view, std::uint32_t>;  // a setter, and which of several

Slot SlotOf(const Setting& setting, const WatchedCall& call) {
  if (!setting.same_as.empty()) return {setting.same_as, setting.selected};
  if (call.arguments->size() == 1) return {setting.setter, 0};
  const std::uint32_t chosen = call.Number(0);
  // Two statuses are kept: of scan type 4, and of all others.
  if (setting.setter == "PALMFGOpt_SetDPMStatus") return {setting.setter, chosen == 4 ? 1U : 0U};
  return {setting.setter, chosen};
}

class GettersAnswerSetters : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (const Setting* setting = Settings().set[call.export_index]) Store(scene, *setting, call);
    if (const Setting* setting = Settings().get[call.export_index]) Compare(*setting, call);
    if (call.name == "PALKEYInit") stored_.clear();  // it may repair the keypad
  }
  void DeviceChanged(Scene& /*scene*/) override { stored_.clear(); }

  void Store(Scene& scene, const Setting& setting, const WatchedCall& call) {
    const Slot slot = SlotOf(setting, call);
    const bool is_stored = call.undisturbed() && call.returned() && call.outcome->code == 0;
    const std::uint32_t number = call.Number(call.arguments->size() - 1);
    const SettingAnswer answer = is_stored ? setting.answer(scene, number) : std::nullopt;
    stored_.erase(slot);
    if (answer) stored_.emplace(slot, *answer);
  }

  void Compare(const Setting& setting, const WatchedCall& call) {
    const auto stored = stored_.find(SlotOf(setting, call));
    if (stored == stored_.end() || !call.undisturbed() || !call.returned()) return;
    const std::size_t place = call.arguments->size() - 1;
    if (call.arguments->at(place) == "null") return;
    Met();
    const std::uint32_t answer = call.outcome->numbers.at(place);
    if (call.outcome->code == 0 && answer == stored->second) return;
    Violated(fmt::format("{} stored {}, and {} answers {} with the result {:#x}", setting.setter,
                         stored->second, call.name, answer, call.outcome->code));
  }

  std::map<Slot, std::uint32_t> stored_;
};

// A tag search keeps its levels until it is stopped.
constexpr std::array<std::string_view, 5> kBeeps{"PALBEEPGoodReadEx", "PALBEEPBadRead",
                                                 "PALBEEPChangeConfig", "PALBEEPChangeConfigError",
                                                 "PALBEEPKeyClick"};

class LevelsComeBack : public Property {
  void CallBegins(Scene& scene, const WatchedCall& call) override {
    if (call.alone && IsBeep(call)) before_ = scene.device.hardware().audio.levels;
  }

  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (!call.returned() || !call.undisturbed() || !IsBeep(call)) return;
    Met();
    const sim::AudioLevels& after = scene.device.hardware().audio.levels;
    if (after == before_) return;
    Violated(fmt::format("{} found volume {:#010x} and gain {}, and leaves {:#010x} and {}",
                         call.name, before_.volume, before_.gain, after.volume, after.gain));
  }

  static bool IsBeep(const WatchedCall& call) { return std::ranges::count(kBeeps, call.name) != 0; }

  sim::AudioLevels before_;
};

constexpr std::array kSettingRows{
    PropertyRow{"levels-come-back", "Volume and gain after a beep are those before it.",
                &Make<LevelsComeBack>},
    PropertyRow{"getters-answer-setters",
                "A getter answers what the last setter of any process has stored.",
                &Make<GettersAnswerSetters>},
};

}  // namespace

std::span<const PropertyRow> SettingProperties() {
  return kSettingRows;
}

}  // namespace palsim
