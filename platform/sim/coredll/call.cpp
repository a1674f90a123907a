#include "platform/sim/coredll/call.h"

#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace sim {
namespace {

ThreadState& RequireThread(CallId id) {
  ThreadState* thread = CurrentThread();
  if (thread != nullptr) return *thread;
  std::fputs(
      fmt::format("{} was called outside of any process of a simulated device\n", CallName(id))
          .c_str(),
      stderr);
  std::abort();
}

}  // namespace

Call::Call(CallId id, const Subject& subject)
    : id_(id), thread_(RequireThread(id)), kernel_(thread_.process.kernel), lock_(kernel_.mutex) {
  kernel_.scheduler.MaybeYield(lock_, *thread_.strand);
  if (thread_.MustLeave()) {
    if (std::uncaught_exceptions() == 0) throw ProcessKilled();
    is_over_ = true;
    fault_ = ERROR_INVALID_HANDLE;
    return;
  }
  const Fault* fault =
      kernel_.faults.Count(id, [&] { return subject ? subject(*this) : std::string(); });
  if (fault == nullptr) return;
  if (fault->kill) {
    kernel_.BeginKill(process());
    throw ProcessKilled();
  }
  if (fault->transfers) {
    most_bytes_ = *fault->transfers;
  } else {
    fault_ = static_cast<LONG>(fault->error);
  }
}

LONG Call::Fail(LONG error) {
  thread_.last_error = static_cast<DWORD>(error);
  if (thread_.calls_in_library > 0) thread_.errors.push_back(thread_.last_error);
  return error;
}

LONG Call::Answer(std::span<BYTE> bytes, LONG error, DWORD& returned) {
  if (!kernel_.on_answer) return error;
  DriverAnswer answer{CallName(id_), bytes, returned, static_cast<std::uint32_t>(error)};
  kernel_.on_answer(answer);
  returned = answer.returned;
  return static_cast<LONG>(answer.error);
}

bool Call::IsNotOverlapped(const OVERLAPPED* overlapped) {
  if (overlapped == nullptr) return true;
  Misuse("was asked for overlapped I/O");
  Fail(ERROR_INVALID_PARAMETER);
  return false;
}

void Call::Misuse(std::string_view what) {
  if (is_over_) return;
  kernel_.Misuse(thread_, fmt::format("{} {}", CallName(id_), what));
}

std::shared_ptr<Object> Call::FindObject(const void* handle) {
  if (is_over_) return nullptr;
  HandleTable::Found found =
      kernel_.handles.Find(reinterpret_cast<std::uintptr_t>(handle), process().id);
  if (found.object == nullptr) {
    Misuse(found.fault);
    Fail(ERROR_INVALID_HANDLE);
  }
  return std::move(found.object);
}

std::shared_ptr<Object> Call::FindObject(const void* handle, ObjectKind kind) {
  std::shared_ptr<Object> object = FindObject(handle);
  if (object == nullptr || object->kind() == kind) return object;
  Misuse(fmt::format("handle {} is a {} and no {}", fmt::ptr(handle),
                     ObjectKindName(object->kind()), ObjectKindName(kind)));
  Fail(ERROR_INVALID_HANDLE);
  return nullptr;
}

}  // namespace sim
