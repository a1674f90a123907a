#include "platform/sim/kernel/process_state.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <unistd.h>

#include <atomic>
#include <stdexcept>

#include "platform/sim/kernel/kernel.h"

namespace sim {
namespace {

thread_local ThreadState* current_thread = nullptr;

// Unique on the host, whatever devices and test runs there are beside this one.
std::filesystem::path CopyPath(std::uint32_t process_id) {
  static std::atomic<unsigned> copies = 0;
  return std::filesystem::temp_directory_path() /
         fmt::format("DVLORQPAL.{}.{}.p{}.so", getpid(), copies++, process_id);
}

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

LibraryCopy::LibraryCopy(const std::filesystem::path& library, std::uint32_t process_id)
    : path_(CopyPath(process_id)), module_(nullptr) {
  std::filesystem::copy_file(library, path_, std::filesystem::copy_options::overwrite_existing);
  module_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module_ != nullptr) return;
  const std::string reason = dlerror();
  std::filesystem::remove(path_);
  throw std::runtime_error("cannot load the library: " + reason);
}

LibraryCopy::~LibraryCopy() {
  dlclose(module_);
  std::error_code ignored;
  std::filesystem::remove(path_, ignored);
}

void* LibraryCopy::Symbol(const char* name) const {
  return dlsym(module_, name);
}

bool LibraryCopy::Contains(const void* address) const {
  Dl_info info{};
  return dladdr(address, &info) != 0 && path_ == info.dli_fname;
}

ProcessState::ProcessState(Kernel& of, std::uint32_t number, std::string_view program)
    : kernel(of), id(number), path(PathOf(program)), name(path.substr(path.rfind('\\') + 1)) {}

std::shared_ptr<ThreadState> ProcessState::AddThread() {
  const auto number = static_cast<std::uint32_t>(threads.size() + 2);
  auto thread = std::make_shared<ThreadState>(*this, number, kernel.driver_strand);
  thread->strand = &thread->own_strand;
  threads.push_back(thread);
  return thread;
}

std::filesystem::path DefaultLibrary() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&DefaultLibrary), &info) == 0) {
    throw std::runtime_error("cannot tell where the simulator's library lies");
  }
  return std::filesystem::path(info.dli_fname).parent_path() / "DVLORQPAL.so";
}

}  // namespace sim
