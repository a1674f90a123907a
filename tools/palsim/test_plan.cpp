#include "tools/palsim/test_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include "platform/sim/device_folder.h"
#include "tools/palsim/device_lock.h"
#include "tools/palsim/jobs.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

namespace palsim {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostCases = 1'000'000;

struct TestDevice {
  std::string given;
  std::string model;
};

struct ScenarioFile {
  std::string path;
  std::shared_ptr<const Scenario> scenario;
};

// Of a folder all that it has, also in folders of it; of a file itself.
std::vector<std::string> FilesOf(const std::string& path) {
  std::error_code error;
  const bool is_folder = path != tools::kStandardStream && fs::is_directory(path, error);
  if (!is_folder) return {path};
  std::vector<std::string> files;
  fs::recursive_directory_iterator at(path, error);
  for (; !error && at != fs::recursive_directory_iterator(); at.increment(error)) {
    if (at->path().extension() == ".scenario" && !at->is_directory()) {
      files.push_back(at->path().string());
    }
  }
  if (error) throw UsageError(fmt::format("{}: {}", path, error.message()));
  if (files.empty()) throw UsageError(path + " has no file that ends with .scenario");
  std::ranges::sort(files);
  return files;
}

// Of every file that is not understood the lines are said at once.
std::vector<ScenarioFile> ReadAll(const std::vector<std::string>& paths) {
  std::vector<ScenarioFile> scenarios;
  std::string faults;
  for (const std::string& path : paths) {
    for (const std::string& file : FilesOf(path)) {
      const std::string normal = fs::path(file).lexically_normal().string();
      if (std::ranges::find(scenarios, normal, &ScenarioFile::path) != scenarios.end()) continue;
      try {
        scenarios.push_back({normal, std::make_shared<Scenario>(ReadScenario(normal))});
      } catch (const UsageError& error) {
        faults += (faults.empty() ? "" : "\n") + std::string(error.what());
      }
    }
  }
  if (!faults.empty()) throw UsageError(faults);
  return scenarios;
}

// Each is loaded once before anything is played, in a process: a device has threads.
std::vector<TestDevice> FindDevices(const std::vector<std::string>& given) {
  std::vector<TestDevice> devices;
  for (const std::string& name : given) {
    if (std::ranges::find(devices, name, &TestDevice::given) != devices.end()) continue;
    devices.push_back({name, {}});
  }
  RunJobs(
      {.count = devices.size()},
      [&](std::size_t index) {
        sim::Device device;
        return LoadLocked(device, FolderOf(devices[index].given)).name;
      },
      [&](std::size_t index, const JobEnd& end) {
        if (!end.error.empty()) throw UsageError(end.error);
        devices[index].model = end.answer;
      });
  return devices;
}

std::vector<std::optional<std::uint32_t>> SeedsOf(const std::optional<std::string>& text) {
  if (!text) return {std::nullopt};
  const SeedRange range = ParseSeeds(*text);
  if (range.last - range.first >= kMostCases) throw UsageError(*text + " are too many seeds");
  std::vector<std::optional<std::uint32_t>> seeds;
  for (std::uint64_t seed = range.first; seed <= range.last; ++seed) {
    seeds.emplace_back(static_cast<std::uint32_t>(seed));
  }
  return seeds;
}

}  // namespace

std::vector<TestCase> PlanTest(const TestOptions& options) {
  const Shard shard = ParseShard(options.shard);
  const auto seeds = SeedsOf(options.seeds);
  const std::vector<ScenarioFile> scenarios = ReadAll(options.paths);
  const auto devices = FindDevices(options.devices.empty() ? SampleNames() : options.devices);
  if (scenarios.size() * devices.size() > kMostCases / seeds.size()) {
    throw UsageError(fmt::format("more than {} cases", kMostCases));
  }
  std::vector<TestCase> cases;
  std::size_t count = 0;
  const auto add = [&](TestCase test) {
    if (shard.Has(count++)) cases.push_back(std::move(test));
  };
  for (const ScenarioFile& file : scenarios) {
    const std::string& wanted = file.scenario->device;
    const std::size_t before = count;
    for (const TestDevice& device : devices) {
      TestCase test{file.path, file.scenario, device.given, std::nullopt, false};
      if (wanted.empty() || wanted == device.model) {
        for (const auto& seed : seeds) add((test.seed = seed, test));
      } else if (!options.devices.empty()) {
        add((test.skipped = true, test));
      }
    }
    if (count == before) {
      throw UsageError(
          fmt::format("{} is for the device {}; name its folder with --device", file.path, wanted));
    }
  }
  return cases;
}

}  // namespace palsim
