// How a platform call of the simulated device begins in a process of Windows: no faults are planned
// there, time is Windows' own, and so is the last error.
#include "platform/sim/coredll/call.h"

#include <fmt/format.h>

#include "platform/win32/machine.h"

namespace sim {

Call::Call(CallId id, const Subject& /*subject*/)
    : id_(id),
      thread_(win32::TheMachine().thread()),
      kernel_(thread_.process.kernel),
      lock_(kernel_.mutex) {
  kernel_.scheduler.set_now_ms(GetTickCount());
}

LONG Call::Fail(LONG error) {
  SetLastError(static_cast<DWORD>(error));
  return error;
}

LONG Call::Answer(std::span<BYTE> /*bytes*/, LONG error, DWORD& /*returned*/) {
  return error;
}

bool Call::IsNotOverlapped(const OVERLAPPED* overlapped) {
  return overlapped == nullptr;
}

void Call::Misuse(std::string_view what) {
  Log(Effect::kDebug, fmt::format("misuse: {} {}", CallName(id_), what));
}

std::shared_ptr<Object> Call::FindObject(const void* handle) {
  HandleTable::Found found =
      kernel_.handles.Find(reinterpret_cast<std::uintptr_t>(handle), process().id);
  if (found.object == nullptr) Fail(ERROR_INVALID_HANDLE);
  return std::move(found.object);
}

std::shared_ptr<Object> Call::FindObject(const void* handle, ObjectKind kind) {
  std::shared_ptr<Object> object = FindObject(handle);
  return object != nullptr && object->kind() == kind ? object : nullptr;
}

}  // namespace sim
