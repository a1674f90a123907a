// A device folder that is open: the device runs in memory and is saved at the end.
#ifndef TOOLS_PALSIM_SESSION_H_
#define TOOLS_PALSIM_SESSION_H_

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/device.h"
#include "platform/sim/device_folder.h"
#include "tools/palsim/run_record.h"

namespace palsim {

class Session {
 public:
  // Throws sim::DeviceFolderError.
  explicit Session(std::filesystem::path folder);

  [[nodiscard]] sim::Device& device() { return device_; }
  [[nodiscard]] const sim::DeviceIdentity& identity() const { return identity_; }
  // The calling process, attached at its first use; another one after a restart of the device.
  [[nodiscard]] sim::Process& process();
  // What is played, for the journal's heading.
  void set_title(std::string_view title, const std::vector<std::string>& about = {});
  void set_process_name(std::string name) { process_name_ = std::move(name); }
  // Prints each journal line as it comes, of one effect or of all.
  void PrintJournal(std::optional<sim::Effect> only = std::nullopt);

  // Detaches, appends the run to the journal and saves the device. What was done wrong is said on
  // stderr.
  void Save();
  // The run that was saved.
  [[nodiscard]] const RunRecord& record() const { return record_; }

 private:
  std::filesystem::path folder_;
  sim::Device device_;
  sim::DeviceIdentity identity_;
  RunRecord record_;
  std::string process_name_ = "palsim.exe";
  std::unique_ptr<sim::Process> process_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_SESSION_H_
