// How the scan engine stands, part by part, as a person reads it.
#ifndef TOOLS_PALSIM_ENGINE_PARTS_H_
#define TOOLS_PALSIM_ENGINE_PARTS_H_

#include <array>
#include <string_view>

#include "platform/sim/hardware/scan_engine.h"

namespace palsim {

struct EnginePart {
  std::string_view label;
  std::string_view name;  // in a scenario
  bool sim::ScanEngineState::*member;
  std::array<std::string_view, 2> words;  // cleared, set

  [[nodiscard]] constexpr std::string_view StateIn(const sim::ScanEngineState& state) const {
    return words.at(state.*member ? 1 : 0);
  }
};

inline constexpr std::array kEngineParts{
    EnginePart{"Power", "power", &sim::ScanEngineState::has_power, {"off", "on"}},
    EnginePart{"Scanning", "scanning", &sim::ScanEngineState::is_enabled, {"disabled", "enabled"}},
    EnginePart{"Operation",
               "operation",
               &sim::ScanEngineState::is_downloading,
               {"normal", "flash download"}},
    EnginePart{"Trigger", "trigger", &sim::ScanEngineState::is_triggered, {"released", "pulled"}},
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_ENGINE_PARTS_H_
