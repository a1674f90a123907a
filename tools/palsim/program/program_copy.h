// A program of one's own, as one process has it loaded.
#ifndef TOOLS_PALSIM_PROGRAM_PROGRAM_COPY_H_
#define TOOLS_PALSIM_PROGRAM_PROGRAM_COPY_H_

#include <filesystem>
#include <functional>

namespace palsim {

// Loads a copy of the program, with its own static variables. The returned function runs the
// program once. Throws UsageError where the file cannot be loaded or has no entry.
[[nodiscard]] std::function<int()> LoadProgram(const std::filesystem::path& file);

}  // namespace palsim

#endif  // TOOLS_PALSIM_PROGRAM_PROGRAM_COPY_H_
