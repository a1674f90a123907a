#include "tools/palsim/explore/play.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>

#include "platform/sim/kernel/kernel.h"
#include "tools/palsim/scenario/stage.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

// What the headers ask of callers: which calls may not overlap.
enum class Turn : std::uint8_t {
  kAny,
  kAloneInProcess,  // no other call of the process
  kScanner,         // no other such call of the process
  kDevice,          // no other such call on the device
};

struct TurnRow {
  std::string_view name;  // of exports that begin so
  Turn turn;
};
constexpr auto kTurns = std::to_array<TurnRow>({
    {"PALBEEPInit", Turn::kAloneInProcess},
    {"PALBEEPTerm", Turn::kAloneInProcess},
    {"PALLEDInit", Turn::kAloneInProcess},
    {"PALLEDTerm", Turn::kAloneInProcess},
    {"PALPWRInit", Turn::kAloneInProcess},
    {"PALPWRTerm", Turn::kAloneInProcess},
    {"PALSysio_Open", Turn::kScanner},
    {"PALSysio_Close", Turn::kScanner},
    {"PALSysio_Set", Turn::kScanner},
    {"PALSysio_ControlScanPower", Turn::kScanner},
    {"PALSysio_DVLSetScanPower", Turn::kScanner},
    {"PALSysio_InternalScannerInterfaceInit", Turn::kScanner},
    {"PALKEYSetButtonAction", Turn::kDevice},
    {"PALKEYInit", Turn::kDevice},
    {"PALMFGOpt_ConfigStoreRegUpdate", Turn::kDevice},
    {"PALREG_LoadRegistry", Turn::kDevice},
    {"PALSecurity_SetCabFilePasswordProtect", Turn::kDevice},
});

Turn TurnOf(std::string_view name) {
  const auto* const row = std::ranges::find_if(
      kTurns, [&](const TurnRow& each) { return name.starts_with(each.name); });
  return row == kTurns.end() ? Turn::kAny : row->turn;
}

class Player {
 public:
  Player(const Sample& sample, std::span<const PropertyRow> properties)
      : stage_(Prepared(device_, sample), [](const std::string&) {}) {
    stage_.set_plain(true);
    stage_.WatchFor(properties);
  }

  Played Play(const Moves& moves) {
    for (const Move& move : moves) {
      PlayMove(move);
      if (IsViolated()) break;
    }
    if (!IsViolated()) stage_.Finish("the end");
    return Result();
  }

 private:
  static sim::Device& Prepared(sim::Device& device, const Sample& sample) {
    device.journal().set_keeps_entries(false);
    device.CopyFrom(sample.device);
    device.StartServicesOf(sample.device);
    return device;
  }

  [[nodiscard]] bool IsViolated() { return stage_.watch()->violation().has_value(); }

  void PlayMove(const Move& move) {
    ForgetEndedCalls();
    if (move.kind == Move::Kind::kStatement) return PlayStatement(move);
    if (!HasProcess(move) || !MayCall(move)) return;
    played_.moves.push_back(move);
    if (move.kind == Move::Kind::kBegin) {
      running_[move.as] = {move.process, TurnOf(move.text)};
      stage_.Begin(move.process, move.text, move.arguments, move.as);
    } else {
      stage_.Call(move.process, move.text, move.arguments);
    }
    stage_.watch()->StatementEnds();
  }

  // Starts it where none lives.
  bool HasProcess(const Move& move) {
    if (!stage_.Lives(move.process)) {
      PlayStatement({.process = move.process, .text = move.process + " starts"});
    }
    return !IsViolated() && stage_.Lives(move.process);
  }

  void ForgetEndedCalls() {
    if (!stage_.RunsAnyCall()) return;
    stage_.TakeEndedCalls();
    std::erase_if(running_, [&](const auto& call) { return !stage_.Runs(call.first); });
  }

  [[nodiscard]] bool MayCall(const Move& move) const {
    const Turn turn = TurnOf(move.text);
    return std::ranges::all_of(running_, [&](const auto& call) {
      const Running& other = call.second;
      const bool is_own = other.process == move.process;
      if (is_own && (turn == Turn::kAloneInProcess || other.turn == Turn::kAloneInProcess)) {
        return false;
      }
      if (turn != other.turn || turn == Turn::kAny) return true;
      return turn == Turn::kScanner && !is_own;
    });
  }

  // A process reads the keypad's layout at its start, and may not start during a change of it.
  [[nodiscard]] bool MayPlay(const Move& move) const {
    if (move.text.ends_with(" starts")) {
      return std::ranges::none_of(
          running_, [](const auto& call) { return call.second.turn == Turn::kDevice; });
    }
    const bool kills = move.text.ends_with(" killed");
    if (!kills && !move.text.ends_with(" ends")) return true;
    return stage_.Lives(move.process) && (kills || !stage_.RunsCallOf(move.process));
  }

  // A program of one's own makes one run after the other.
  bool MayRunProgram(const Move& move) {
    return HasProcess(move) && !stage_.RunsCallOf(move.process);
  }

  void PlayStatement(const Move& move) {
    if (move.text.starts_with("program runs ") && !MayRunProgram(move)) return;
    if (!move.process.empty() && !MayPlay(move)) return;
    try {
      Scenario scenario = ParseScenario("a move", move.text);
      for (const Statement& statement : scenario.statements) stage_.PlayStatement(statement);
      played_.moves.push_back(move);
    } catch (const UsageError&) {
      // as things stand there is nothing to delete, to signal or to remove
    }
    if (move.text.ends_with(" killed")) ++played_.kills;
  }

  Played Result() {
    played_.violation = stage_.watch()->violation();
    played_.met = stage_.watch()->met();
    played_.calls = stage_.watch()->calls();
    played_.faults = device_.kernel().faults.due();
    played_.kills += device_.kernel().faults.kills();
    played_.restarts = device_.restarts().size();
    played_.time_ms = device_.now_ms();
    return std::move(played_);
  }

  struct Running {
    std::string process;
    Turn turn;
  };

  sim::Device device_;
  Stage stage_;
  std::map<std::string, Running> running_;
  Played played_;
};

}  // namespace

Played Play(const Sample& sample, const Moves& moves, std::span<const PropertyRow> properties) {
  return Player(sample, properties).Play(moves);
}

}  // namespace palsim
