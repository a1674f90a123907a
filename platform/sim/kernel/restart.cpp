// The restart of a device: processes end, and what is stored stays.
#include "platform/sim/kernel/kernel.h"
#include "platform/sim/kernel/program_process.h"

namespace sim {

const char* RestartText(RestartKind kind) {
  return kind == RestartKind::kCold ? "restart, cold" : "restart, warm";
}

void Kernel::Restart(const ThreadState* thread, RestartKind kind) {
  Log(thread, Effect::kPower, RestartText(kind));
  restarts.push_back(kind);
  std::vector<std::shared_ptr<ProcessState>> ending = program_processes;
  for (const auto& process : processes) {
    if (auto state = process.lock()) ending.push_back(std::move(state));
  }
  for (const auto& process : ending) BeginKill(*process);
  processes.clear();
  mutexes.clear();
  events.clear();
  for (const auto& each : hardware.drivers) each->Restart();
  for (const Program& service : services) StartProgram(*this, service, {});
}

}  // namespace sim
