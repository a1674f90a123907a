// The sample devices, and devices that are named on a command line or by a test.
#ifndef TOOLS_PALSIM_SAMPLES_H_
#define TOOLS_PALSIM_SAMPLES_H_

#include <filesystem>
#include <string>
#include <vector>

namespace palsim {

[[nodiscard]] std::vector<std::string> SampleNames();
// The folder of a sample device. Throws UsageError where there is none of this name.
[[nodiscard]] std::filesystem::path SampleFolder(const std::string& name);
// The folder of a device that is named by its folder, or by its sample. Throws as SampleFolder
// does.
[[nodiscard]] std::filesystem::path FolderOf(const std::string& device);

}  // namespace palsim

#endif  // TOOLS_PALSIM_SAMPLES_H_
