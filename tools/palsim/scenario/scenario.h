// A scenario: a readable text of what processes do on a device, what happens to them from outside,
// and what is expected of it (docs/scenarios.md).
#ifndef TOOLS_PALSIM_SCENARIO_SCENARIO_H_
#define TOOLS_PALSIM_SCENARIO_SCENARIO_H_

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tools/palsim/scenario/pattern.h"

namespace palsim {

class Stage;

// One kind of statement.
struct StatementForm {
  std::string_view pattern;
  std::string_view meaning;
  void (*play)(Stage& stage,
               const Filled& filled);  // nullptr: it only says something about the file
  bool is_from_outside = false;        // it changes the device behind the back of its processes
};

struct Statement {
  std::size_t line = 0;
  const StatementForm* form = nullptr;
  Filled filled;
};

struct Scenario {
  std::string name;                // of the file, for messages
  std::string title;               // the file's name where it gives none
  std::vector<std::string> about;  // paragraphs
  std::string device;              // the sample that it wants; empty: any
  std::vector<Statement> statements;
};

// All that there are, in the order in which they are tried.
[[nodiscard]] const std::vector<StatementForm>& StatementForms();

// Throws UsageError with every line that is not understood: "good-read.scenario:7: ...".
[[nodiscard]] Scenario ParseScenario(const std::string& name, std::string_view text);
[[nodiscard]] Scenario ReadScenario(const std::filesystem::path& file);

}  // namespace palsim

#endif  // TOOLS_PALSIM_SCENARIO_SCENARIO_H_
