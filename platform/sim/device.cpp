#include "platform/sim/device.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <stdexcept>

#include "platform/sim/kernel/kernel.h"
#include "platform/sim/kernel/program_process.h"

namespace sim {

Device::Device(Concurrency concurrency) : kernel_(std::make_unique<Kernel>(concurrency)) {}

Device::~Device() {
  EndPrograms(*kernel_);
}

Registry& Device::registry() {
  return kernel_->registry;
}

FileSystem& Device::files() {
  return kernel_->files;
}

Journal& Device::journal() {
  return kernel_->journal;
}

Hardware& Device::hardware() {
  return kernel_->hardware;
}

std::uint64_t Device::now_ms() const {
  const Scheduler::Lock lock(kernel_->mutex);
  return kernel_->scheduler.now_ms();
}

void Device::set_now_ms(std::uint64_t now) {
  const Scheduler::Lock lock(kernel_->mutex);
  kernel_->scheduler.set_now_ms(now);
}

void Device::Advance(std::uint32_t ms) {
  Scheduler::Lock lock(kernel_->mutex);
  kernel_->scheduler.Wait(lock, kernel_->driver_strand, ms);
}

void Device::RunUntilIdle() {
  Scheduler::Lock lock(kernel_->mutex);
  kernel_->scheduler.AwaitIdle(lock);
}

void Device::set_on_clock(std::function<void(std::uint64_t)> on_clock) {
  const Scheduler::Lock lock(kernel_->mutex);
  kernel_->scheduler.set_on_clock(std::move(on_clock));
}

void Device::ShuffleTurns(std::uint32_t seed) {
  const Scheduler::Lock lock(kernel_->mutex);
  kernel_->scheduler.Shuffle(seed);
}

void Device::Note(Effect effect, std::string_view text) {
  const Scheduler::Lock lock(kernel_->mutex);
  kernel_->Log(nullptr, effect, text);
}

bool Device::SetEvent(std::string_view name, bool signalled) {
  const Scheduler::Lock lock(kernel_->mutex);
  const auto found = kernel_->events.find(ToUtf16(name));
  const auto event = found == kernel_->events.end() ? nullptr : found->second.lock();
  if (event == nullptr) return false;
  kernel_->Log(nullptr, Effect::kEvent, fmt::format("{} {}", name, signalled ? "set" : "reset"));
  event->set_signalled(signalled);
  event->ServeWaiters(kernel_->scheduler);
  return true;
}

void Device::CopyFrom(const Device& other) {
  kernel_->registry.CopyFrom(other.kernel_->registry);
  kernel_->files.CopyFrom(other.kernel_->files);
  kernel_->hardware = other.kernel_->hardware;
  for (auto& driver : kernel_->hardware.drivers) driver = driver->Clone();
  kernel_->modules = other.kernel_->modules;
  kernel_->library_path = other.kernel_->library_path;
  kernel_->programs = other.kernel_->programs;
}

void Device::PlanFault(Fault fault) {
  const Scheduler::Lock lock(kernel_->mutex);
  kernel_->faults.Plan(std::move(fault));
}

void Device::set_on_answer(std::function<void(DriverAnswer&)> on_answer) {
  const Scheduler::Lock lock(kernel_->mutex);
  kernel_->on_answer = std::move(on_answer);
}

void Device::ClearFaults() {
  const Scheduler::Lock lock(kernel_->mutex);
  kernel_->faults.Clear();
}

std::vector<std::string> Device::faults_not_reached() const {
  const Scheduler::Lock lock(kernel_->mutex);
  return kernel_->faults.NotReached();
}

std::vector<std::string> Device::faulted_calls() const {
  const Scheduler::Lock lock(kernel_->mutex);
  const std::span<const CallId> faulted = kernel_->faults.faulted_since_clear();
  std::vector<std::string> names;
  names.reserve(faulted.size());
  for (const CallId id : faulted) names.emplace_back(CallName(id));
  return names;
}

unsigned Device::calls(std::string_view name) const {
  const std::optional<CallId> id = CallFromName(name);
  if (!id) throw std::invalid_argument(std::string(name) + " is no platform call");
  const Scheduler::Lock lock(kernel_->mutex);
  return kernel_->faults.calls(*id);
}

unsigned Device::calls() const {
  const Scheduler::Lock lock(kernel_->mutex);
  return kernel_->faults.calls();
}

const std::vector<std::string>& Device::misuse() const {
  return kernel_->misuse;
}

std::vector<std::string> Device::TakeMisuse() {
  const Scheduler::Lock lock(kernel_->mutex);
  return std::exchange(kernel_->misuse, {});
}

void Device::set_on_free(std::function<void(std::string_view)> on_free) {
  const Scheduler::Lock lock(kernel_->mutex);
  kernel_->on_free = std::move(on_free);
}

void Device::InstallModule(Module module) {
  const Scheduler::Lock lock(kernel_->mutex);
  std::erase_if(kernel_->modules,
                [&](const Module& known) { return EqualNoCase(known.path(), module.path()); });
  kernel_->modules.push_back(std::move(module));
}

void Device::RemoveModule(std::string_view name) {
  const Scheduler::Lock lock(kernel_->mutex);
  std::erase_if(kernel_->modules,
                [&](const Module& module) { return EqualNoCase(module.name, name); });
}

std::vector<Module> Device::modules() const {
  const Scheduler::Lock lock(kernel_->mutex);
  return kernel_->modules;
}

void Device::set_library_path(std::string path) {
  const Scheduler::Lock lock(kernel_->mutex);
  kernel_->library_path = std::move(path);
}

void Device::InstallProgram(Program program) {
  const Scheduler::Lock lock(kernel_->mutex);
  std::erase_if(kernel_->programs,
                [&](const Program& known) { return EqualNoCase(known.path, program.path); });
  kernel_->programs.push_back(std::move(program));
}

void Device::StartProgram(const Program& program) {
  {
    const Scheduler::Lock lock(kernel_->mutex);
    kernel_->services.push_back(program);
    sim::StartProgram(*kernel_, program, {});
  }
  Advance(0);
}

void Device::StartServicesOf(const Device& other) {
  for (const Program& service : other.kernel_->services) StartProgram(service);
}

void Device::Restart(RestartKind kind) {
  {
    const Scheduler::Lock lock(kernel_->mutex);
    kernel_->Restart(nullptr, kind);
  }
  Advance(0);  // calls under way end, services start
}

std::vector<RestartKind> Device::restarts() const {
  const Scheduler::Lock lock(kernel_->mutex);
  return kernel_->restarts;
}

}  // namespace sim
