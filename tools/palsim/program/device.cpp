#include "tools/palsim/program/device.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <optional>
#include <utility>

#include "platform/sim/kernel/registry_text.h"
#include "tools/palsim/samples.h"
#include "tools/palsim/scenario/played_device.h"
#include "tools/palsim/scenario/values.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

// What is thrown inside becomes the one class that a test knows.
template <class Function>
auto Checked(const Function& function) try {
  return function();
} catch (const UsageError& error) {
  throw Error(error.what());
} catch (const std::invalid_argument& error) {
  throw Error(error.what());
} catch (const sim::DeviceFolderError& error) {
  throw Error(error.what());
} catch (const std::filesystem::filesystem_error& error) {
  throw Error(error.what());
}

void RequireNone(const std::vector<std::string>& failures) {
  if (!failures.empty()) throw ExpectationFailed(fmt::format("{}", fmt::join(failures, "\n")));
}

}  // namespace

Device::Device(const std::string& sample_or_folder)
    : played_(Checked([&] { return std::make_unique<PlayedDevice>(FolderOf(sample_or_folder)); })) {
}

Device::~Device() = default;

void Device::Play(const std::string& statements) {
  RequireNone(Checked([&] { return played_->Play(ParseScenario("play", statements)); }));
}

void Device::Run(const std::string& process, std::function<int()> function) {
  if (process.empty() || !sim::FileSystem::IsPathAllowed(process)) {
    throw Error("'" + process + "' is no name of a process");
  }
  Checked([&] {
    if (!played_->stage().Lives(process)) played_->stage().StartProcess(process);
    played_->stage().RunFunction(process, std::move(function), process);
  });
}

void Device::Advance(std::uint32_t milliseconds) {
  played_->device().Advance(milliseconds);
}

std::uint64_t Device::now_ms() const {
  return played_->device().now_ms();
}

std::vector<Device::Line> Device::Journal(const std::string& effect) const {
  const std::optional<sim::Effect> wanted = sim::EffectFromName(effect);
  if (!wanted && !effect.empty()) throw Error("there is no effect '" + effect + "'");
  std::vector<Line> lines;
  for (const sim::JournalEntry& entry : played_->stage().journal()) {
    if (wanted && entry.effect != *wanted) continue;
    lines.push_back(
        {entry.time_ms, entry.process_id, std::string(sim::EffectName(entry.effect)), entry.text});
  }
  return lines;
}

bool Device::HasFile(const std::string& path) const {
  return played_->device().files().Find(path) != nullptr;
}

std::string Device::ReadFile(const std::string& path) const {
  const auto* const bytes = played_->device().files().Read(path);
  if (bytes == nullptr) throw Error("the device has no file " + path);
  return {bytes->begin(), bytes->end()};
}

void Device::WriteFile(const std::string& path, const std::string& content) {
  Checked([&] { played_->device().files().Write(path, content); });
  played_->device().Note(sim::Effect::kFile,
                         fmt::format("{} written: {} bytes", path, content.size()));
}

std::string Device::ReadValue(const std::string& value) const {
  const ValuePath path = Checked([&] { return ParseValuePath(value); });
  const sim::RegistryValue* found = played_->device().registry().FindValue(path.key, path.name);
  if (found == nullptr) throw Error("the registry has no " + value);
  return sim::ValueText(*found);
}

void Device::Finish() {
  RequireNone(Checked([&] { return played_->Finish(); }));
}

void Device::Save(const std::string& folder) {
  Checked([&] { played_->Save(folder, "A test"); });
}

}  // namespace palsim
