#include "platform/sim/kernel/process_state.h"

#include <fmt/format.h>

#include "platform/sim/kernel/kernel.h"

namespace sim {
namespace {

thread_local ThreadState* current_thread = nullptr;

std::string PathOf(std::string_view program) {
  const bool is_path = program.find('\\') != std::string_view::npos;
  return fmt::format("{}{}", is_path ? "" : "\\Program Files\\", program);
}

}  // namespace

ThreadState* CurrentThread() {
  return current_thread;
}

ThreadScope::ThreadScope(ThreadState* thread) : previous_(current_thread) {
  current_thread = thread;
}

ThreadScope::~ThreadScope() {
  current_thread = previous_;
}

bool ThreadState::MustLeave() const {
  return process.killed || (process.exiting && this != process.main_thread.get());
}

ProcessState::ProcessState(Kernel& of, std::uint32_t number, std::string_view program)
    : kernel(of),
      id(number),
      path(PathOf(program)),
      name(path.substr(path.rfind('\\') + 1)),
      library_path(of.library_path) {}

std::shared_ptr<ThreadState> ProcessState::AddThread() {
  const auto number = static_cast<std::uint32_t>(threads.size() + 2);
  auto thread = std::make_shared<ThreadState>(*this, number, kernel.driver_strand);
  thread->strand = &thread->own_strand;
  threads.push_back(thread);
  return thread;
}

}  // namespace sim
