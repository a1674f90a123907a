// A device in memory on which statements are played: what a test bench and a test in C++ have in
// common.
#ifndef TOOLS_PALSIM_SCENARIO_PLAYED_DEVICE_H_
#define TOOLS_PALSIM_SCENARIO_PLAYED_DEVICE_H_

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/sim/device.h"
#include "platform/sim/device_folder.h"
#include "tools/palsim/scenario/stage.h"

namespace palsim {

class PlayedDevice {
 public:
  // A device as the folder has it; the folder itself stays as it is. Throws
  // sim::DeviceFolderError.
  explicit PlayedDevice(std::filesystem::path folder);

  [[nodiscard]] const sim::DeviceIdentity& identity() const { return identity_; }
  [[nodiscard]] sim::Device& device() { return *device_; }
  [[nodiscard]] Stage& stage() { return *stage_; }

  // Each gives the expectations that did not hold, and throws UsageError for what cannot be played.
  [[nodiscard]] std::vector<std::string> Play(const Scenario& scenario);
  // Waits for calls, ends the processes, and forgets planned faults.
  [[nodiscard]] std::vector<std::string> Finish();

  // Begins anew with the device as it was loaded.
  void Reset();
  // Throws UsageError: a process cannot be copied.
  void RequireNoProcess() const;
  // Writes device and journal into a new folder. Throws sim::DeviceFolderError, and where a process
  // runs, UsageError.
  void Save(const std::filesystem::path& folder, const std::string& title);

 private:
  std::filesystem::path folder_;
  sim::Device loaded_;  // as it was at first; nothing runs on it
  sim::DeviceIdentity identity_;
  std::vector<std::string> failures_;
  std::unique_ptr<sim::Device> device_;
  std::unique_ptr<Stage> stage_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_SCENARIO_PLAYED_DEVICE_H_
