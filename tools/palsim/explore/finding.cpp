#include "tools/palsim/explore/finding.h"

#include <fmt/format.h>

#include "platform/sim/journal.h"
#include "tools/palsim/explore/shrink.h"
#include "tools/palsim/scenario/stage.h"

namespace palsim {
namespace {

std::string ScenarioText(const World& world, const Finding& finding, const Violation& violation,
                         const Moves& moves) {
  std::string text = fmt::format("title  {}\nabout  {}\nabout  Found by: {}\n", violation.property,
                                 violation.sentence, finding.command);
  if (world.sample->folder.empty()) text += fmt::format("device {}\n", world.sample->name);
  text += fmt::format("\ncheck property {}\n", violation.property);
  for (const Move& move : moves) text += move.Text() + '\n';
  return text;
}

// The end of the journal, up to where the property did not hold.
std::vector<std::string> LastLines(const World& world, const std::string& scenario) {
  constexpr std::size_t kMost = 10;
  sim::Device device;
  device.CopyFrom(world.sample->device);
  device.StartServicesOf(world.sample->device);
  const auto& entries = device.journal().entries();
  std::size_t end = 0;
  Stage stage(device, [&](const std::string&) {
    if (end == 0) end = entries.size();
  });
  stage.Play(ParseScenario("found", scenario));
  std::vector<std::string> lines;
  for (std::size_t at = end > kMost ? end - kMost : 0; at < end; ++at) {
    lines.push_back(sim::ToLine(entries[at]));
  }
  return lines;
}

}  // namespace

std::string CommandOf(std::uint64_t seed, const WorldOptions& options) {
  std::string command = fmt::format("palsim explore --seeds {}", seed);
  if (!options.device.empty()) command += " --device " + options.device;
  if (!options.program.empty()) command += " --program " + options.program;
  return command + fmt::format(" --steps {} --processes {} --faults {}", options.steps,
                               options.processes, FaultRateText(options.faults));
}

Finding MakeFinding(const World& world, const Played& played, std::uint64_t seed,
                    const WorldOptions& options) {
  const PropertyRow& row = FindProperty(played.violation->property);
  const auto violates = [&](const Moves& moves) {
    return Play(*world.sample, moves, {&row, 1}).violation.has_value();
  };
  // The moves that were played are the whole of it, but for those of a property that others help.
  Moves moves = violates(played.moves) ? Shrink(played.moves, violates) : played.moves;
  const Played last = Play(*world.sample, moves, {&row, 1});
  Finding finding{.property = std::string(row.name),
                  .seed = seed,
                  .how = last.violation ? last.violation->how : played.violation->how,
                  .command = CommandOf(seed, options),
                  .scenario = {},
                  .lines = {}};
  finding.scenario = ScenarioText(world, finding, *played.violation, last.moves);
  finding.lines = LastLines(world, finding.scenario);
  return finding;
}

}  // namespace palsim
