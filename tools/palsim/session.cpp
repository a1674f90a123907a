#include "tools/palsim/session.h"

#include <fmt/format.h>

#include <fstream>

#include "platform/sim/hardware/hardware.h"
#include "tools/streams.h"

namespace palsim {

Session::Session(std::filesystem::path folder) : folder_(std::move(folder)) {
  identity_ = sim::LoadDevice(device_, folder_);
  record_.device = fmt::format("{}: {}", identity_.name, identity_.description);
  record_.start_ms = device_.now_ms();
  record_.volume = device_.hardware().audio.levels.volume;
  record_.gain = device_.hardware().audio.levels.gain;
}

void Session::set_title(std::string_view title, const std::vector<std::string>& about) {
  record_.title = sim::Escape(title);
  for (const std::string& paragraph : about) record_.about.push_back(sim::Escape(paragraph));
}

sim::Process& Session::process() {
  if (process_ != nullptr && !process_->alive()) process_.reset();  // the device has restarted
  if (process_ == nullptr) process_ = std::make_unique<sim::Process>(device_, process_name_);
  return *process_;
}

void Session::PrintJournal(std::optional<sim::Effect> only) {
  device_.journal().set_listener([only](const sim::JournalEntry& entry) {
    if (only && entry.effect != *only) return;
    tools::PrintAtOnce(fmt::format("  {}\n", sim::ToLine(entry)));
  });
}

void Session::Save() {
  process_.reset();
  device_.Advance(0);  // services of the device go on with what they were asked for
  record_.entries = device_.journal().entries();
  record_.end_ms = device_.now_ms();
  std::ofstream file(JournalFile(folder_), std::ios::app);
  WriteRun(file, record_);
  if (!file.flush()) {
    throw sim::DeviceFolderError(JournalFile(folder_).string() + " cannot be written");
  }
  device_.journal().Clear();
  sim::SaveDevice(device_, folder_);
  for (const std::string& misuse : device_.TakeMisuse()) {
    fmt::print(stderr, "palsim: misuse of the platform: {}\n", misuse);
  }
}

}  // namespace palsim
