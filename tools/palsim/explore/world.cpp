#include "tools/palsim/explore/world.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <memory>

#include "platform/sim/device_folder.h"
#include "tools/palsim/explore/arguments.h"
#include "tools/palsim/explore/variations.h"
#include "tools/palsim/export_call.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

// Read at its first use.
const Sample& SampleOf(const std::string& device) {
  static std::map<std::string, std::unique_ptr<Sample>> samples;
  std::unique_ptr<Sample>& sample = samples[device];
  if (sample != nullptr) return *sample;
  auto made = std::make_unique<Sample>();
  made->device.journal().set_keeps_entries(false);
  const std::filesystem::path folder = FolderOf(device);
  const std::string name = sim::LoadDevice(made->device, folder).name;
  if (folder != device) made->name = name;
  sample = std::move(made);
  return *sample;
}

std::vector<std::string> DevicesOf(const WorldOptions& options) {
  if (!options.device.empty()) return {options.device};
  static const std::vector<std::string> names = SampleNames();
  if (names.empty()) static_cast<void>(SampleFolder({}));  // which says what is missing
  return names;
}

constexpr auto kProcessNames = std::to_array<std::string_view>(
    {"scanner", "settings", "updater", "shell", "logger", "agent", "remote", "kiosk"});

// These are made once in so many choices of them: they take the device down, or take long.
struct Seldom {
  std::string_view name;
  std::size_t once_in;
};
constexpr auto kSeldom = std::to_array<Seldom>({
    {"PALBOOT_BootTerminal", 20},
    {"PALPWRSuspendCtrl", 6},
    {"PALMFGOpt_ConfigStoreRegUpdate", 4},
});

// These are chosen so many times as often: most is at stake with them.
struct Often {
  std::string_view name;
  std::size_t times;
};
constexpr auto kOften = std::to_array<Often>({
    {"PALSecurity_CheckPx", 6},
    {"PALSecurity_SetCabFilePasswordProtect", 2},
    {"PALKEYSetButtonAction", 6},
    {"PALREG_LoadRegistry", 6},
});

std::vector<std::string_view> WeightedExports() {
  std::vector<std::string_view> names = ExportNames();
  for (const Often& often : kOften) names.insert(names.end(), often.times - 1, often.name);
  return names;
}

class Maker {
 public:
  Maker(std::uint64_t seed, const WorldOptions& options)
      : choices_(seed), options_(options), sample_(SampleOf(choices_.Of(DevicesOf(options)))) {}

  World Make() {
    ChooseCharacter();
    for (std::size_t left = variations_; left > 0; --left) {
      Say(ChooseVariation(choices_, Device()));
    }
    if (turns_change_) Say(fmt::format("turns change by {}", choices_.Below(1 << 30)));
    for (unsigned step = 0; step < options_.steps; ++step) Step();
    if (!options_.program.empty()) Say("program ends", "program");
    for (const std::string& process : processes_) {
      // A program that leaves the scan driver open makes a mistake of its own.
      moves_.push_back({.kind = Move::Kind::kCall, .process = process, .text = "PALSysio_Close"});
      Say(process + " ends", process);
    }
    return {.sample = &sample_, .moves = std::move(moves_)};
  }

 private:
  // Only looked at.
  sim::Device& Device() { return const_cast<Sample&>(sample_).device; }

  // Worlds differ in what is done in them: some see everything, others a few exports again and
  // again; some have one thread a process and others many.
  void ChooseCharacter() {
    constexpr std::size_t kMostVariations = 8;
    variations_ = choices_.OneIn(3) ? 0 : choices_.Below(kMostVariations + 1);
    begins_once_in_ = choices_.OneIn(3) ? 4 : 25;
    turns_change_ = choices_.OneIn(2);
    const std::size_t count =
        1 + choices_.Below(std::min<std::size_t>(options_.processes, kProcessNames.size()));
    for (std::size_t at = 0; at < count; ++at) processes_.emplace_back(kProcessNames.at(at));
    ChooseExports();
  }

  void ChooseExports() {
    static const std::vector<std::string_view> all = WeightedExports();
    const std::string_view family = FindDeclaration(choices_.Of(all))->family;
    const std::size_t kind = choices_.Below(4);
    for (const std::string_view name : all) {
      const bool is_of_family = FindDeclaration(name)->family == family;
      if (kind < 2 || (kind == 2 && is_of_family)) exports_.push_back(name);
    }
    constexpr std::size_t kFew = 5;
    while (exports_.empty() || (kind == 3 && exports_.size() < kFew)) {
      exports_.push_back(choices_.Of(all));
    }
  }

  void Step() {
    constexpr std::size_t kHappensOnceIn = 30;
    if (faults_left_ > 0 && --faults_left_ == 0) Say("no more faults");
    if (IsFaultDue()) return ChooseTrouble();
    if (choices_.OneIn(kHappensOnceIn)) return Say(ChooseHappening(choices_, Device()));
    if (!options_.program.empty() && choices_.OneIn(4)) return RunProgram();
    if (choices_.OneIn(150)) return EndProcess("ends");
    Call();
  }

  bool IsFaultDue() {
    if (options_.faults == "none" || faults_left_ > 0) return false;
    return choices_.OneIn(options_.faults == "rare" ? 50 : 8);
  }

  void ChooseTrouble() {
    constexpr std::size_t kMostSteps = 6;
    const std::size_t kind = choices_.Below(6);
    if (kind == 0) return EndProcess("is killed");
    faults_left_ = 1 + choices_.Below(kMostSteps);
    Say(kind < 3 ? ChooseKill(choices_) : ChooseFault(choices_));
    if (choices_.OneIn(4)) Say(ChooseFault(choices_));
  }

  void EndProcess(const char* how) {
    const std::string& process = choices_.Of(processes_);
    if (std::string_view(how) == "ends") {
      moves_.push_back({.kind = Move::Kind::kCall, .process = process, .text = "PALSysio_Close"});
    }
    Say(fmt::format("{} {}", process, how), process);
  }

  void RunProgram() {
    if (choices_.OneIn(4)) return Say("program ends", "program");
    const std::string as = fmt::format("run{}", ++begun_);
    Say(fmt::format("program runs {} as {}", WordText(options_.program), as), "program");
    moves_.back().as = as;
  }

  void Call() {
    const std::string_view name = choices_.Of(exports_);
    const auto* const seldom = std::ranges::find(kSeldom, name, &Seldom::name);
    if (seldom != kSeldom.end() && !choices_.OneIn(seldom->once_in)) return;
    Move move{.kind = Move::Kind::kCall,
              .process = choices_.Of(processes_),
              .text = std::string(name),
              .arguments = ChooseArguments(choices_, *FindDeclaration(name))};
    if (choices_.OneIn(begins_once_in_)) {
      move.kind = Move::Kind::kBegin;
      move.as = fmt::format("call{}", ++begun_);
    }
    moves_.push_back(std::move(move));
    // What failed, or was cut short, is done again: by the same caller or by another.
    if (faults_left_ > 0 && choices_.OneIn(2)) {
      moves_.push_back(Move(moves_.back()));
      moves_.back().kind = Move::Kind::kCall;
      moves_.back().as.clear();
      moves_.back().process = choices_.Of(processes_);
    }
    if (choices_.OneIn(3)) AskBack(Move(moves_.back()));
  }

  // What was set is asked for, mostly by another process.
  void AskBack(const Move& setter) {
    const std::size_t at = setter.text.find("Set");
    if (at == std::string::npos) return;
    std::string getter = setter.text;
    getter[at] = 'G';
    const Declaration* declaration = FindDeclaration(getter);
    if (declaration == nullptr) return;
    std::vector<std::string> arguments = ChooseArguments(choices_, *declaration);
    const bool is_same = declaration->parameters.front().name ==
                         FindDeclaration(setter.text)->parameters.front().name;
    const bool is_in = declaration->parameters.front().direction == "in";
    if (is_same && is_in) arguments.front() = setter.arguments.front();
    moves_.push_back({.kind = Move::Kind::kCall,
                      .process = choices_.Of(processes_),
                      .text = std::move(getter),
                      .arguments = std::move(arguments)});
  }

  void Say(std::string text, std::string process = {}) {
    moves_.push_back(
        {.kind = Move::Kind::kStatement, .process = std::move(process), .text = std::move(text)});
  }

  Choices choices_;
  const WorldOptions& options_;
  const Sample& sample_;
  Moves moves_;
  std::size_t variations_ = 0;
  std::size_t begins_once_in_ = 20;
  bool turns_change_ = false;
  std::vector<std::string> processes_;
  std::vector<std::string_view> exports_;
  std::size_t faults_left_ = 0;  // steps until they are forgotten
  unsigned begun_ = 0;
};

}  // namespace

void ReadSamples(const WorldOptions& options) {
  for (const std::string& device : DevicesOf(options)) static_cast<void>(SampleOf(device));
}

World MakeWorld(std::uint64_t seed, const WorldOptions& options) {
  return Maker(seed, options).Make();
}

}  // namespace palsim
