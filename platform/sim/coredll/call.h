// The beginning of every platform call: the lock, the count, the fault point.
#ifndef PLATFORM_SIM_COREDLL_CALL_H_
#define PLATFORM_SIM_COREDLL_CALL_H_

#include <algorithm>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/sim/kernel/kernel.h"
#include "platform/sim/text.h"
#include "platform/wince.h"

namespace sim {

class Call {
 public:
  // Gives what a call is about, as Fault has it.
  using Subject = std::function<std::string(Call& call)>;

  // Throws ProcessKilled where the process has ended or a fault ends it here. A program that calls
  // from a thread of no device is told so and aborted.
  explicit Call(CallId id, const Subject& subject = {});

  [[nodiscard]] Kernel& kernel() { return kernel_; }
  [[nodiscard]] ThreadState& thread() { return thread_; }
  [[nodiscard]] ProcessState& process() { return thread_.process; }
  [[nodiscard]] Scheduler::Lock& lock() { return lock_; }

  // The error that a planned fault gives this call, or 0.
  [[nodiscard]] LONG fault() const { return fault_; }
  // How many of some bytes a planned fault lets this call move.
  [[nodiscard]] DWORD Transferable(DWORD bytes) const { return std::min(bytes, most_bytes_); }

  // Sets the last error and gives it back as the registry's calls do.
  LONG Fail(LONG error);
  // Sets the last error and gives what the call answers then.
  template <class Answer>
  Answer Fail(LONG error, Answer answer) {
    Fail(error);
    return answer;
  }

  // What this call answers, for whoever watches the device's answers: the error with which it
  // fails, or 0. `returned`: the count that the caller is told.
  LONG Answer(std::span<BYTE> bytes, LONG error, DWORD& returned);
  // Of a call that tells no count, in a record of the caller.
  template <class Record>
  LONG Answer(Record& record, LONG error = ERROR_SUCCESS) {
    DWORD returned = sizeof(record);
    return Answer({reinterpret_cast<BYTE*>(&record), sizeof(record)}, error, returned);
  }

  void Log(Effect effect, std::string text) { kernel_.Log(&thread_, effect, std::move(text)); }
  // Records that this call was used wrongly.
  void Misuse(std::string_view what);

  // The object of one kind behind a handle; nullptr with the last error set, and misuse recorded,
  // where there is none.
  template <class Kind>
  std::shared_ptr<Kind> Find(const void* handle) {
    return std::static_pointer_cast<Kind>(FindObject(handle, Kind::kKind));
  }
  std::shared_ptr<Object> FindObject(const void* handle);
  template <class Handle = HANDLE>
  Handle AddHandle(std::shared_ptr<Object> object) {
    return reinterpret_cast<Handle>(
        kernel_.handles.Add(std::move(object), process().id, thread_.id));
  }

 private:
  std::shared_ptr<Object> FindObject(const void* handle, ObjectKind kind);

  CallId id_;
  ThreadState& thread_;
  Kernel& kernel_;
  Scheduler::Lock lock_;
  LONG fault_ = 0;
  DWORD most_bytes_ = 0xFFFFFFFF;
};

// What a call by this name is about.
inline Call::Subject Named(LPCWSTR name) {
  return [name](Call&) { return name == nullptr ? std::string() : ToUtf8(name); };
}

// Records that nothing simulates a call yet, and fails it with ERROR_CALL_NOT_IMPLEMENTED.
template <class Answer>
Answer NotSimulated(CallId id, Answer answer) {
  Call call(id);
  if (call.fault() != 0) return call.Fail(call.fault(), answer);
  call.Misuse("is not simulated");
  return call.Fail(ERROR_CALL_NOT_IMPLEMENTED, answer);
}

}  // namespace sim

#endif  // PLATFORM_SIM_COREDLL_CALL_H_
