#include "tools/palsim/program/program_copy.h"

#include <fmt/format.h>

#include "platform/sim/kernel/library_copy.h"
#include "tools/palsim/usage_error.h"

namespace palsim {

std::function<int()> LoadProgram(const std::filesystem::path& file) {
  using Entry = int (*)();
  std::shared_ptr<sim::LibraryCopy> copy;
  try {
    copy = std::make_shared<sim::LibraryCopy>(file);
  } catch (const std::exception& error) {
    throw UsageError(fmt::format("{} cannot be loaded: {}", file.string(), error.what()));
  }
  const auto entry = reinterpret_cast<Entry>(copy->Symbol("PalProgramMain"));
  if (entry == nullptr) throw UsageError(file.string() + " has no PalProgramMain");
  return [copy, entry] { return entry(); };
}

}  // namespace palsim
