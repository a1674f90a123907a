#include "platform/sim/programs/flush_service.h"

#include "platform/wince.h"

namespace sim {

Program FlushService() {
  return {R"(\Windows\flushservice.exe)", [](const std::string& /*command_line*/) -> std::uint32_t {
            const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, TEXT("DVLRegFlushKeyAll"));
            if (event == nullptr) return 1;
            while (WaitForSingleObject(event, INFINITE) == WAIT_OBJECT_0 && ResetEvent(event)) {
              RegFlushKey(HKEY_LOCAL_MACHINE);
              RegFlushKey(HKEY_CURRENT_USER);
              RegFlushKey(HKEY_CLASSES_ROOT);
              RegFlushKey(HKEY_USERS);
            }
            CloseHandle(event);
            return 0;
          }};
}

}  // namespace sim
