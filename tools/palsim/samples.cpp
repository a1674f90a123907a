#include "tools/palsim/samples.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <system_error>

#include "platform/sim/kernel/simulator_folder.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

// Where the samples are, seen from the simulator's library: installed, or in the build folder.
constexpr std::array kSampleFolders{PAL_INSTALLED_SAMPLES, "../../../devices"};

// Empty where there is none.
std::filesystem::path FindSamples() {
  for (const char* const relative : kSampleFolders) {
    const std::filesystem::path folder = sim::SimulatorFolder() / relative;
    if (std::filesystem::is_directory(folder)) return folder.lexically_normal();
  }
  const char* const other = std::getenv("PALSIM_SAMPLES");
  return other == nullptr ? "" : other;
}

const std::filesystem::path& Samples() {
  static const std::filesystem::path folder = FindSamples();
  return folder;
}

}  // namespace

std::vector<std::string> SampleNames() {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(Samples(), ignored)) {
    if (std::filesystem::exists(entry.path() / "device.toml")) {
      names.push_back(entry.path().filename().string());
    }
  }
  std::ranges::sort(names);
  return names;
}

std::filesystem::path SampleFolder(const std::string& name) {
  if (Samples().empty()) {
    throw UsageError(
        "the sample devices are not where they were installed; $PALSIM_SAMPLES can say where");
  }
  if (!std::filesystem::exists(Samples() / name / "device.toml")) {
    throw UsageError("there is no sample device '" + name + "'; 'palsim samples' lists them");
  }
  return Samples() / name;
}

std::filesystem::path FolderOf(const std::string& device) {
  const bool is_folder = std::filesystem::exists(std::filesystem::path(device) / "device.toml");
  return is_folder ? std::filesystem::path(device) : SampleFolder(device);
}

}  // namespace palsim
