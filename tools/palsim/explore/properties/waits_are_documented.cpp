#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

constexpr const char* kSettings = R"(HKLM\SOFTWARE\Dravonel\PAL)";
constexpr std::array kLitFor{"IntGrLedOnDur", "TethGrLedOnDur", "BTGrLedOnDur", "RFIDGrLedOnDur"};

constexpr std::uint64_t kMutexMs = 2000;
constexpr std::uint64_t kSoundMs = 5000;  // of any sound file of the sample devices

struct Wait {
  std::string_view name;  // of exports that begin so
  std::uint64_t ms;
};

// The first that fits counts. All others wait for nothing.
constexpr auto kWaits = std::to_array<Wait>({
    {"PALBEEPGoodReadEx", kMutexMs + 2 * (kSoundMs + 50)},
    {"PALBEEPBadRead", kMutexMs + 4 * 100 + kSoundMs},
    {"PALBEEPChangeConfig", kMutexMs + kSoundMs},  // and PALBEEPChangeConfigError
    {"PALBEEPKeyClick", kMutexMs + kSoundMs},
    {"PALBEEPStartTagSearch", kMutexMs},
    {"PALBEEPStopTagSearch", kMutexMs},
    {"PALBEEPTerm", kMutexMs},
    {"PALLEDGrLedToggle", kMutexMs},  // and the time for which it is lit
    {"PALLED", kMutexMs},
    {"PALSysio_InternalScannerInterfaceInit", 60000},
    {"PALREG_LoadRegistry", 120000},
});

class Documented : public Property {
  void CallBegins(Scene& scene, const WatchedCall& call) override {
    if (call.name == kToggle) longest_lit_ = std::max(longest_lit_, LitFor(scene));
  }

  void CallEnds(Scene& scene, const WatchedCall& call) override {
    const std::uint64_t took_ms = call.end_ms - call.begin_ms;
    if (!call.returned()) return;
    const auto* const wait = std::ranges::find_if(
        kWaits, [&](const Wait& each) { return call.name.starts_with(each.name); });
    std::uint64_t most_ms = wait == kWaits.end() ? 0 : wait->ms;
    if (call.name == kToggle) {
      longest_lit_ = std::max(longest_lit_, LitFor(scene));
      most_ms += longest_lit_;
    }
    if (took_ms > 0) Met();
    if (took_ms <= most_ms) return;
    Violated(
        fmt::format("{} takes {} ms, and waits for {} ms at most", call.name, took_ms, most_ms));
  }

  // The longest time that is set now.
  static std::uint64_t LitFor(Scene& scene) {
    std::uint64_t longest_ms = 250;
    for (const char* const name : kLitFor) {
      const std::uint32_t ms = scene.Dword(kSettings, name).value_or(0);
      if (ms != 0xFFFFFFFF) longest_ms = std::max<std::uint64_t>(longest_ms, ms);
    }
    return longest_ms;
  }

  static constexpr std::string_view kToggle = "PALLEDGrLedToggle";
  std::uint64_t longest_lit_ = 0;
};

}  // namespace

std::unique_ptr<Property> WaitsAreDocumented() {
  return std::make_unique<Documented>();
}

}  // namespace palsim
