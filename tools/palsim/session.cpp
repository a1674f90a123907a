#include "tools/palsim/session.h"

#include <fmt/core.h>

#include <fstream>

namespace palsim {

std::filesystem::path JournalFile(const std::filesystem::path& folder) {
  return folder / "journal.log";
}

std::vector<sim::JournalEntry> ReadJournal(const std::filesystem::path& folder) {
  if (!std::filesystem::exists(folder / "device.toml")) {
    throw sim::DeviceFolderError(folder.string() + " is no device: it has no device.toml");
  }
  std::vector<sim::JournalEntry> entries;
  std::ifstream file(JournalFile(folder));
  for (std::string line; std::getline(file, line);) {
    std::optional<sim::JournalEntry> entry = sim::FromLine(line);
    if (entry) entries.push_back(std::move(*entry));
  }
  return entries;
}

Session::Session(std::filesystem::path folder) : folder_(std::move(folder)) {
  identity_ = sim::LoadDevice(device_, folder_);
}

sim::Process& Session::process() {
  if (process_ != nullptr && !process_->alive()) process_.reset();  // the device has restarted
  if (process_ == nullptr) process_ = std::make_unique<sim::Process>(device_, process_name_);
  return *process_;
}

void Session::PrintJournal(std::optional<sim::Effect> only) {
  device_.journal().set_listener([only](const sim::JournalEntry& entry) {
    if (only && entry.effect != *only) return;
    fmt::print("  {}\n", sim::ToLine(entry));
    std::fflush(stdout);
  });
}

void Session::Save() {
  process_.reset();
  device_.Advance(0);  // services of the device go on with what they were asked for
  std::ofstream file(JournalFile(folder_), std::ios::app);
  for (const sim::JournalEntry& entry : device_.journal().entries()) {
    file << sim::ToLine(entry) << '\n';
  }
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
