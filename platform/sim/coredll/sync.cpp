#include <fmt/format.h>

#include "platform/sim/coredll/call.h"

namespace sim {
namespace {

// Finds or makes a kernel object by its name. An object without a name is always new.
template <class Kind, class Make>
std::shared_ptr<Kind> NamedObject(std::map<std::u16string, std::weak_ptr<Kind>>& names,
                                  const std::u16string& name, bool& existed, const Make& make) {
  std::shared_ptr<Kind> object = name.empty() ? nullptr : names[name].lock();
  existed = object != nullptr;
  if (existed) return object;
  object = make();
  if (!name.empty()) names[name] = object;
  return object;
}

void LogMutex(Call& call, const Object& mutex, std::string_view what) {
  if (mutex.name().empty()) return;
  call.Log(Effect::kMutex, fmt::format("{} {}", ToUtf8(mutex.name()), what));
}

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;
using sim::Effect;

HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES /*security*/, BOOL initial_owner, LPCWSTR name) {
  Call call(CallId::CreateMutexW);
  if (call.fault() != 0) return call.Fail<HANDLE>(call.fault(), nullptr);
  const std::u16string text(name == nullptr ? u"" : name);
  bool existed = false;
  const auto mutex = sim::NamedObject(call.kernel().mutexes, text, existed,
                                      [&] { return std::make_shared<sim::Mutex>(text); });
  if (existed) call.Fail(ERROR_ALREADY_EXISTS);
  if (!existed && initial_owner != FALSE) {
    mutex->TryTake(call.thread());
    sim::LogMutex(call, *mutex, "taken");
  }
  return call.AddHandle(mutex);
}

BOOL ReleaseMutex(HANDLE handle) {
  Call call(CallId::ReleaseMutex);
  const auto mutex = call.Find<sim::Mutex>(handle);
  if (mutex == nullptr) return FALSE;
  if (!mutex->Release(call.thread())) return call.Fail(ERROR_NOT_OWNER, FALSE);
  sim::LogMutex(call, *mutex, "released");
  mutex->ServeWaiters(call.kernel().scheduler);
  return call.fault() == 0 ? TRUE : call.Fail(call.fault(), FALSE);
}

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES /*security*/, BOOL manual_reset, BOOL initial_state,
                    LPCWSTR name) {
  Call call(CallId::CreateEventW, sim::Named(name));
  if (call.fault() != 0) return call.Fail<HANDLE>(call.fault(), nullptr);
  const std::u16string text(name == nullptr ? u"" : name);
  bool existed = false;
  const auto event = sim::NamedObject(call.kernel().events, text, existed, [&] {
    return std::make_shared<sim::Event>(text, manual_reset != FALSE, initial_state != FALSE);
  });
  if (existed) call.Fail(ERROR_ALREADY_EXISTS);
  return call.AddHandle(event);
}

BOOL EventModify(HANDLE handle, DWORD action) {
  Call call(CallId::EventModify);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  const auto event = call.Find<sim::Event>(handle);
  if (event == nullptr) return FALSE;
  if (action < EVENT_PULSE || action > EVENT_SET) return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  constexpr std::array kWords = {"pulsed", "reset", "set"};
  if (!event->name().empty()) {
    call.Log(Effect::kEvent,
             fmt::format("{} {}", sim::ToUtf8(event->name()), kWords.at(action - 1)));
  }
  event->set_signalled(action != EVENT_RESET);
  event->ServeWaiters(call.kernel().scheduler);
  if (action == EVENT_PULSE) event->set_signalled(false);
  return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD timeout_ms) {
  Call call(CallId::WaitForSingleObject);
  if (call.fault() == LONG{WAIT_TIMEOUT}) return WAIT_TIMEOUT;
  if (call.fault() != 0) return call.Fail(call.fault(), WAIT_FAILED);
  const auto object = call.FindObject(handle);
  if (object == nullptr) return WAIT_FAILED;
  const auto waitable = std::dynamic_pointer_cast<sim::Waitable>(object);
  if (waitable == nullptr) {
    call.Misuse(fmt::format("was given a {}", sim::ObjectKindName(object->kind())));
    return call.Fail(ERROR_INVALID_HANDLE, WAIT_FAILED);
  }
  const DWORD result = call.kernel().WaitFor(call.lock(), call.thread(), waitable, timeout_ms);
  const bool is_taken = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
  if (object->kind() == sim::ObjectKind::kMutex && is_taken) sim::LogMutex(call, *object, "taken");
  return result;
}

void Sleep(DWORD ms) {
  Call call(CallId::Sleep);
  if (call.is_over()) return;
  sim::Scheduler& scheduler = call.kernel().scheduler;
  if (ms == 0) {
    scheduler.Yield(call.lock(), *call.thread().strand);
  } else {
    call.kernel().Block(call.lock(), call.thread(), ms);
  }
  if (call.thread().MustLeave()) throw sim::ProcessKilled();
}

DWORD GetTickCount() {
  Call call(CallId::GetTickCount);
  return static_cast<DWORD>(call.kernel().scheduler.now_ms());
}
