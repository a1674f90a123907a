#include "platform/conformance/rows.h"

namespace conformance {
namespace {

constexpr const WCHAR* kName = TEXT("DVLORQPAL_CHECK");

class TestMutex {
 public:
  explicit TestMutex(BOOL owned = FALSE) : mutex_(CreateMutexW(nullptr, owned, kName)) {}
  ~TestMutex() { CloseHandle(mutex_); }
  TestMutex(const TestMutex&) = delete;
  TestMutex& operator=(const TestMutex&) = delete;
  [[nodiscard]] HANDLE get() const { return mutex_; }

 private:
  HANDLE mutex_;
};

void CreateMutexTwice(Answer& answer) {
  SetLastError(0);
  const TestMutex first;
  answer.Add("error %d", GetLastError());
  const TestMutex second(TRUE);
  answer.Add("error %d", GetLastError());
  answer.Add("owned %d", ReleaseMutex(first.get()));
}

void ReleaseUnowned(Answer& answer) {
  const TestMutex mutex;
  SetLastError(0);
  answer.Add("%d", ReleaseMutex(mutex.get()));
  answer.Add("error %d", GetLastError());
}

void TakeTwice(Answer& answer) {
  const TestMutex mutex;
  answer.Add("%d", WaitForSingleObject(mutex.get(), 0));
  answer.Add("%d", WaitForSingleObject(mutex.get(), 0));
  for (int release = 0; release < 3; ++release) answer.Add("%d", ReleaseMutex(mutex.get()));
}

DWORD WINAPI TakeAndEnd(LPVOID mutex) {
  return WaitForSingleObject(mutex, 0);
}

void Abandon(Answer& answer) {
  const TestMutex mutex;
  const HANDLE thread = CreateThread(nullptr, 0, &TakeAndEnd, mutex.get(), 0, nullptr);
  WaitForSingleObject(thread, 500);
  CloseHandle(thread);
  answer.Add("%d", WaitForSingleObject(mutex.get(), 500));
  answer.Add("then %d", WaitForSingleObject(mutex.get(), 0));
  ReleaseMutex(mutex.get());
  ReleaseMutex(mutex.get());
}

void CreateEventTwice(Answer& answer) {
  const HANDLE first = CreateEventW(nullptr, FALSE, TRUE, kName);
  SetLastError(0);
  const HANDLE second = CreateEventW(nullptr, TRUE, FALSE, kName);
  answer.Add("error %d", GetLastError());
  answer.Add("%d", WaitForSingleObject(second, 0));
  answer.Add("%d", WaitForSingleObject(second, 0));
  CloseHandle(second);
  CloseHandle(first);
}

void SetAutoResetEvent(Answer& answer) {
  const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, kName);
  answer.Add("%d", WaitForSingleObject(event, 10));
  answer.Add("set %d", EventModify(event, EVENT_SET));
  answer.Add("%d", WaitForSingleObject(event, 0));
  answer.Add("%d", WaitForSingleObject(event, 0));
  answer.Add("pulse %d", EventModify(event, EVENT_PULSE));
  answer.Add("%d", WaitForSingleObject(event, 0));
  CloseHandle(event);
}

void ModifyEventOtherwise(Answer& answer) {
  const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  answer.Add("%d", EventModify(event, 9));
  CloseHandle(event);
}

void ShareName(Answer& answer) {
  const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, kName);
  SetLastError(0);
  const HANDLE mutex = CreateMutexW(nullptr, FALSE, kName);
  answer.Add("%d error %d", mutex != nullptr, GetLastError());
  if (mutex != nullptr) CloseHandle(mutex);
  CloseHandle(event);
}

constexpr Row kObjectRows[] = {
    {"mutex: create twice", Basis::kDocumented, &CreateMutexTwice},
    {"mutex: release without owning", Basis::kDocumented, &ReleaseUnowned},
    {"mutex: take twice, release three times", Basis::kDocumented, &TakeTwice},
    {"mutex: its owner ends", Basis::kDocumented, &Abandon},
    {"event: create twice, otherwise the second time", Basis::kDocumented, &CreateEventTwice},
    {"event: wait, set, wait twice, pulse, wait", Basis::kDocumented, &SetAutoResetEvent},
    {"event: modify with 9", Basis::kChosen, &ModifyEventOtherwise},
    {"names: a mutex with the name of an event", Basis::kDocumented, &ShareName},
};

}  // namespace

std::span<const Row> ObjectRows() {
  return kObjectRows;
}

}  // namespace conformance
