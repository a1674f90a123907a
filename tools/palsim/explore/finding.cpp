#include "tools/palsim/explore/finding.h"

#include <fmt/format.h>

#include "platform/sim/journal.h"
#include "tools/palsim/explore/shrink.h"
#include "tools/palsim/names.h"
#include "tools/palsim/scenario/stage.h"

namespace palsim {
namespace {

std::string ScenarioText(const Sample& sample, const Finding& finding, const std::string& checked,
                         const Moves& moves) {
  std::string text = fmt::format("title  {}\nabout  {}\nabout  Found by: {}\n", finding.property,
                                 FindProperty(finding.property).sentence, finding.command);
  text += !sample.name.empty()
              ? fmt::format("device {}\n", sample.name)
              : "about  Its device stands beside it: run it with --new --sample device\n";
  text += fmt::format("\ncheck {}\n", checked);
  for (const Move& move : moves) text += move.Text() + '\n';
  for (const Move& move : moves) {
    if (!move.as.empty()) text += fmt::format("wait for {}\n", move.as);
  }
  return text;
}

// The end of the journal, up to where the property did not hold. Empty where it held.
std::vector<std::string> LastLines(const Sample& sample, const std::string& scenario) {
  constexpr std::size_t kMost = 10;
  sim::Device device;
  device.CopyFrom(sample.device);
  device.StartServicesOf(sample.device);
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
  if (!options.device.empty()) command += " --device " + Quoted(options.device);
  if (!options.program.empty()) command += " --program " + Quoted(options.program);
  return command + fmt::format(" --steps {} --processes {} --faults {}", options.steps,
                               options.processes, options.faults);
}

Finding MakeSmall(Finding finding, const WorldOptions& options) {
  const World world = MakeWorld(finding.seed, options);
  const Sample& sample = *world.sample;
  const PropertyRow& row = FindProperty(finding.property);
  std::span<const PropertyRow> rows(&row, 1);
  const auto violates = [&](const Moves& moves) {
    const Played played = Play(sample, moves, rows);
    return played.violation && played.violation->property == row.name;
  };
  const Moves played = Play(sample, world.moves, Properties()).moves;
  const bool is_alone = violates(played);
  if (!is_alone) rows = Properties();  // others help it, by what they ask the device
  const Played small = Play(sample, Shrink(played, violates), rows);
  finding.scenario = ScenarioText(
      sample, finding, is_alone ? fmt::format("property {}", row.name) : "properties", small.moves);
  finding.lines = LastLines(sample, finding.scenario);
  if (finding.lines.empty()) finding.lines = {"(the scenario does not show it again)"};
  return finding;
}

}  // namespace palsim
