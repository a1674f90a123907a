#include "tools/palsim/scenario/played_device.h"

#include <fmt/format.h>

#include <system_error>
#include <utility>

#include "platform/sim/hardware/hardware.h"
#include "tools/palsim/device_lock.h"
#include "tools/palsim/run_store.h"
#include "tools/palsim/usage_error.h"

namespace palsim {

PlayedDevice::PlayedDevice(std::filesystem::path folder)
    : folder_(std::move(folder)), identity_(LoadLocked(loaded_, folder_)) {
  Reset();
}

std::vector<std::string> PlayedDevice::Play(const Scenario& scenario) {
  failures_.clear();
  stage_->PlayOn(scenario);
  return std::exchange(failures_, {});
}

std::vector<std::string> PlayedDevice::Finish() {
  failures_.clear();
  stage_->Finish("finish");
  device_->ClearFaults();
  return std::exchange(failures_, {});
}

void PlayedDevice::Reset() {
  stage_.reset();  // its processes end
  device_ = std::make_unique<sim::Device>();
  device_->CopyFrom(loaded_);
  device_->set_now_ms(loaded_.now_ms());
  device_->StartServicesOf(loaded_);
  stage_ = std::make_unique<Stage>(
      *device_, [this](const std::string& message) { failures_.push_back(message); });
}

void PlayedDevice::RequireNoProcess() const {
  if (stage_->HasProcess()) throw UsageError("a process runs, and it cannot be copied; end it");
}

void PlayedDevice::Save(const std::filesystem::path& folder, const std::string& title) {
  RequireNoProcess();
  if (!std::filesystem::create_directory(folder)) {
    throw sim::DeviceFolderError(folder.string() + " is there already");
  }
  try {
    sim::FolderChange change(folder);
    const sim::FolderLock lock = LockDevice(folder_, Use::kRead);
    sim::PutDevice(*device_, folder_, change);
    RunRecord run;
    run.title = title;
    run.device = fmt::format("{}: {}", identity_.name, identity_.description);
    run.start_ms = loaded_.now_ms();
    run.end_ms = device_->now_ms();
    run.volume = loaded_.hardware().audio.levels.volume;
    run.gain = loaded_.hardware().audio.levels.gain;
    run.entries = stage_->journal();
    PutRun(run, 0, change);
    change.Commit();
  } catch (const std::exception&) {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    throw;
  }
}

}  // namespace palsim
