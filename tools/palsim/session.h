// A device folder that is open and locked: the device runs in memory and is saved at the end.
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
#include "tools/palsim/device_lock.h"
#include "tools/palsim/run_record.h"

namespace palsim {

class Session {
 public:
  // Throws sim::DeviceFolderError.
  explicit Session(const std::filesystem::path& folder, Use use = Use::kChange);
  // A new device, made of a sample; it is in the folder once it is saved.
  Session(sim::FolderLock folder, std::filesystem::path sample);

  [[nodiscard]] sim::Device& device() { return device_; }
  [[nodiscard]] const sim::DeviceIdentity& identity() const { return identity_; }
  // The calling process, attached at its first use; another one after a restart of the device.
  [[nodiscard]] sim::Process& process();
  // What is played, for the journal's heading.
  void set_title(std::string_view title, const std::vector<std::string>& about = {});
  void set_process_name(std::string name) { process_name_ = std::move(name); }
  // Prints each journal line as it comes, of one effect or of all.
  void PrintJournal(std::optional<sim::Effect> only = std::nullopt);

  // Detaches. What was done wrong is said on stderr.
  void End();
  // Ends, and saves the device and the run as one change. A run that changed nothing on the device
  // and has no effect that a person could notice is kept only where this is asked for.
  void Save(bool keeps_every_run = false);
  // The run that was saved.
  [[nodiscard]] const RunRecord& record() const { return record_; }

 private:
  [[nodiscard]] const std::filesystem::path& folder() const { return lock_.folder(); }

  sim::FolderLock lock_;
  std::filesystem::path origin_;  // where the device was loaded from: its folder, or a sample
  std::optional<sim::FolderLock> origin_lock_;
  sim::Device device_;
  sim::DeviceIdentity identity_;
  RunRecord record_;
  std::string process_name_ = "palsim.exe";
  std::unique_ptr<sim::Process> process_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_SESSION_H_
