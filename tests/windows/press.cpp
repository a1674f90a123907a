// press COUNT: signals what the keypad's driver signals for a key that scans, which a PC does not
// have.
#include <windows.h>

#include <cstdlib>

namespace {

// As soon as another program has made it.
HANDLE Open(const wchar_t* name) {
  for (int attempt = 0; attempt < 2000; ++attempt) {
    HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, name);
    if (event != nullptr) return event;
    Sleep(20);
  }
  std::exit(1);
}

// Whether nobody has waited for it yet. It is as it was.
bool IsSet(HANDLE event) {
  return WaitForSingleObject(event, 0) == WAIT_OBJECT_0 && SetEvent(event) != FALSE;
}

}  // namespace

int main(int /*count*/, char** arguments) {
  HANDLE changed = Open(L"DeltaLeftScan");
  HANDLE held = Open(L"StateLeftScan");
  SetEvent(held);
  for (int left = std::atoi(arguments[1]); left > 0; --left) {
    SetEvent(changed);
    while (IsSet(changed)) Sleep(20);
  }
}
