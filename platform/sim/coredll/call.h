// The beginning of every platform call: it takes the device's lock, counts the call and finds the
// fault that is planned for it.
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

  // Throws ProcessKilled where the process has ended, or where a fault ends it here. While that
  // exception passes through a program, the calls of its destructors fail instead and do nothing.
  // Aborts the host's program, with a message, where the calling thread belongs to no device.
  explicit Call(CallId id, const Subject& subject = {});

  [[nodiscard]] Kernel& kernel() { return kernel_; }
  [[nodiscard]] ThreadState& thread() { return thread_; }
  [[nodiscard]] ProcessState& process() { return thread_.process; }
  [[nodiscard]] Scheduler::Lock& lock() { return lock_; }

  // The error that a planned fault gives this call, or 0.
  [[nodiscard]] LONG fault() const { return fault_; }
  // Whether the process has ended already.
  [[nodiscard]] bool is_over() const { return is_over_; }
  // The number of bytes that this call may move: fewer than `bytes` where a fault says so.
  [[nodiscard]] DWORD Transferable(DWORD bytes) const { return std::min(bytes, most_bytes_); }

  // Sets the last error and returns it, as the registry's calls do.
  LONG Fail(LONG error);
  // Sets the last error and returns the answer of a call that fails.
  template <class Answer>
  Answer Fail(LONG error, Answer answer) {
    Fail(error);
    return answer;
  }

  // Shows the answer of this call to the test that watches answers, which may change it. Returns
  // the error with which the call then fails, or 0. `returned` is the byte count for the caller.
  LONG Answer(std::span<BYTE> bytes, LONG error, DWORD& returned);
  // The same for a call that fills a record of the caller and gives no byte count.
  template <class Record>
  LONG Answer(Record& record, LONG error = ERROR_SUCCESS) {
    DWORD returned = sizeof(record);
    return Answer({reinterpret_cast<BYTE*>(&record), sizeof(record)}, error, returned);
  }

  // False for an overlapped request: the last error is set and misuse is recorded.
  bool IsNotOverlapped(const OVERLAPPED* overlapped);

  void Log(Effect effect, std::string_view text) { kernel_.Log(&thread_, effect, text); }
  // Records that this call was used wrongly.
  void Misuse(std::string_view what);

  // Finds the object of one kind behind a handle. Where there is none, returns nullptr, sets the
  // last error and records misuse.
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
  bool is_over_ = false;
  LONG fault_ = 0;
  DWORD most_bytes_ = 0xFFFFFFFF;
};

// What a call by this name is about.
inline Call::Subject Named(LPCWSTR name) {
  return [name](Call&) { return name == nullptr ? std::string() : ToUtf8(name); };
}

// For a call that is not simulated: records misuse, and fails with ERROR_CALL_NOT_IMPLEMENTED.
template <class Answer>
Answer NotSimulated(CallId id, Answer answer) {
  Call call(id);
  if (call.fault() != 0) return call.Fail(call.fault(), answer);
  call.Misuse("is not simulated");
  return call.Fail(ERROR_CALL_NOT_IMPLEMENTED, answer);
}

}  // namespace sim

#endif  // PLATFORM_SIM_COREDLL_CALL_H_
