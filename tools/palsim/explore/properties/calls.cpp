// What calls may take and leave: time, handles, memory, mutexes.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "platform/sim/hardware/wave_file.h"
#include "platform/sim/text.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

// The simulated platform keeps a list of what its programs do wrong.
enum class MisuseKind : std::uint8_t {
  kWaitForEver,
  kOfProgram,  // what a program of one's own takes for granted does not hold
  kOfCaller,   // a process without PALSysio_Close leaves the driver open: its own mistake
  kOther,
};

MisuseKind KindOf(const std::string& misuse) {
  const auto has = [&](std::string_view text) { return misuse.find(text) != std::string::npos; };
  if (has("for ever")) return MisuseKind::kWaitForEver;
  if (has("does not hold: ")) return MisuseKind::kOfProgram;
  // Of a program of one's own it counts.
  if (has("left open at the end: driver") && !has("program.exe: ")) return MisuseKind::kOfCaller;
  return MisuseKind::kOther;
}

template <MisuseKind kKind>
class NoMisuse : public Property {
  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    // Another call might have made it wait.
    if (kKind == MisuseKind::kWaitForEver && !call.alone) Met();
  }
  void DeviceChanged(Scene& scene) override {
    if (kKind == MisuseKind::kOfProgram && scene.programs > 0) Met();
  }
  void ProcessEnds(Scene& /*scene*/) override {
    if (kKind == MisuseKind::kOther) Met();
  }
  void StatementEnds(Scene& scene) override {
    for (const std::string& misuse : scene.device.misuse()) {
      if (KindOf(misuse) == kKind) Violated(misuse);
    }
  }
};

// What these open or close, the process holds on purpose. A keep-awake thread has handles of its
// own.
constexpr std::array<std::string_view, 9> kHolders{
    "PALBEEPInit", "PALBEEPTerm",   "PALLEDInit",     "PALLEDTerm",       "PALPWRInit",
    "PALPWRTerm",  "PALSysio_Open", "PALSysio_Close", "PALPWRSuspendCtrl"};

class CallsLeaveNothing : public Property {
  void CallBegins(Scene& /*scene*/, const WatchedCall& call) override {
    if (call.name == "PALPWRSuspendCtrl") keep_awake_.insert(call.process->id());
    if (!call.alone_in_process || Holds(call)) return;
    handles_ = call.process->open_handles();
    heap_blocks_ = call.process->heap_blocks();
    watched_ = &call;
  }

  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    if (!call.returned() || !call.alone_in_process) return;
    Met();
    if (call.process->held_mutexes() != 0) Violated(fmt::format("{} holds a mutex", call.name));
    const bool has_other_threads = keep_awake_.contains(call.process->id());
    if (watched_ != &call || Holds(call) || has_other_threads) return;
    Compare(call, "handles", handles_, call.process->open_handles());
    Compare(call, "heap blocks", heap_blocks_, call.process->heap_blocks());
  }

  void Compare(const WatchedCall& call, const char* what, unsigned before, unsigned now) {
    if (now > before) Violated(fmt::format("{} leaves {} {}", call.name, now - before, what));
  }

  static bool Holds(const WatchedCall& call) {
    return std::ranges::count(kHolders, call.name) != 0;
  }

  const WatchedCall* watched_ = nullptr;
  unsigned handles_ = 0;
  unsigned heap_blocks_ = 0;
  std::set<std::uint32_t> keep_awake_;  // the processes
};

// The length of a sound by the name of its value; 0 where it cannot be played.
std::uint64_t SoundMs(const Scene& scene, std::string_view name) {
  const sim::RegistryValue* const value =
      scene.registry().FindValue(R"(HKLM\Software\Dravonel\BeeperVol)", name);
  if (value == nullptr) return 0;
  std::u16string path = sim::UnitsOf(value->data);
  path.resize(std::min(path.find(u'\0'), path.size()));
  const auto* const file = scene.device.files().Read(sim::ToUtf8(path));
  if (file == nullptr) return 0;
  const auto wave = sim::ReadWaveFile(*file);
  return wave ? wave->length_ms() : 0;
}

// The longest that a flash of a scan type takes: its time, or the default if that is longer, or if
// the time cannot be read or has no end.
std::uint64_t FlashMs(const Scene& scene, std::uint32_t scan_type) {
  constexpr std::array kLitFor{"IntGrLedOnDur", "TethGrLedOnDur", "BTGrLedOnDur", "RFIDGrLedOnDur"};
  constexpr std::uint32_t kDefaultMs = 250;
  if (scan_type >= kLitFor.size()) return 0;
  const auto ms = scene.Dword(R"(HKLM\SOFTWARE\Dravonel\PAL)", kLitFor.at(scan_type));
  return ms && *ms != 0xFFFFFFFF ? std::max(*ms, kDefaultMs) : kDefaultMs;
}

struct Wait {
  std::string_view name;     // of exports that begin so
  std::uint64_t ms;          // and
  unsigned sounds = 0;       // so many times
  std::string_view sound{};  // this one
  bool is_flash = false;     // and a flash of the scan type
};

// The first that fits counts. All others wait for nothing.
constexpr std::uint64_t kMutexMs = 2000;
constexpr auto kWaits = std::to_array<Wait>({
    {"PALBEEPGoodReadEx", kMutexMs + 2 * 50, 2, "GoodRead"},
    {"PALBEEPBadRead", kMutexMs + 4 * 100, 1, "BadRead"},
    {"PALBEEPChangeConfigError", kMutexMs, 1, "ConfigChangeError"},
    {"PALBEEPChangeConfig", kMutexMs, 1, "ConfigChange"},
    {"PALBEEPKeyClick", kMutexMs, 1, "KeyClick"},
    {"PALBEEPStartTagSearch", kMutexMs},
    {"PALBEEPStopTagSearch", kMutexMs},
    {"PALBEEPTerm", kMutexMs},
    {"PALLEDGrLedToggle", kMutexMs, 0, "", true},
    {"PALLED", kMutexMs},
    {"PALSysio_InternalScannerInterfaceInit", 60000},
    {"PALREG_LoadRegistry", 120000},
});

std::uint64_t MostMs(const Scene& scene, const WatchedCall& call) {
  const auto* const wait = std::ranges::find_if(
      kWaits, [&](const Wait& each) { return call.name.starts_with(each.name); });
  if (wait == kWaits.end()) return 0;
  return wait->ms + (wait->sounds > 0 ? wait->sounds * SoundMs(scene, wait->sound) : 0) +
         (wait->is_flash ? FlashMs(scene, call.Number(0)) : 0);
}

class WaitsAreDocumented : public Property {
  void CallBegins(Scene& scene, const WatchedCall& call) override {
    if (const std::uint64_t most_ms = MostMs(scene, call)) most_ms_[&call] = most_ms;
  }
  // A call may have asked the device before it changed or after.
  void DeviceChanged(Scene& scene) override {
    for (auto& [call, most_ms] : most_ms_) most_ms = std::max(most_ms, MostMs(scene, *call));
  }

  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    const auto entry = most_ms_.extract(&call);
    const std::uint64_t most_ms = entry.empty() ? 0 : entry.mapped();
    const std::uint64_t took_ms = call.end_ms - call.begin_ms;
    if (took_ms == 0 || !call.returned()) return;
    Met();
    if (took_ms <= most_ms) return;
    Violated(
        fmt::format("{} takes {} ms, and waits for {} ms at most", call.name, took_ms, most_ms));
  }

  std::map<const WatchedCall*, std::uint64_t> most_ms_;  // of the calls under way
};

constexpr std::array kCallRows{
    PropertyRow{"platform-is-used-rightly",
                "No handle is used wrongly or left behind, and no platform call is misused.",
                &Make<NoMisuse<MisuseKind::kOther>>},
    PropertyRow{"nobody-waits-for-ever", "No thread waits for ever.",
                &Make<NoMisuse<MisuseKind::kWaitForEver>>},
    PropertyRow{"programs-hold", "What a program of one's own takes for granted holds.",
                &Make<NoMisuse<MisuseKind::kOfProgram>>},
    PropertyRow{"calls-leave-nothing", "A call leaves no mutex, no handle and no memory behind.",
                &Make<CallsLeaveNothing>},
    PropertyRow{"waits-are-documented", "No export takes longer than its documented waits.",
                &Make<WaitsAreDocumented>},
};

}  // namespace

std::span<const PropertyRow> CallProperties() {
  return kCallRows;
}

}  // namespace palsim
