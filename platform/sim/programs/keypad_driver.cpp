#include "platform/sim/programs/keypad_driver.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/sim/kernel/kernel.h"
#include "platform/wince.h"

namespace sim {
namespace {

constexpr std::string_view kKeyboard = R"(HKLM\Hardware\Devicemap\Keybd)";
constexpr std::size_t kRecordBytes = 6;

std::string PlaneText(const Registry& registry, const std::string& layout, std::string_view plane) {
  const RegistryValue* value = registry.FindValue(layout, plane);
  if (value == nullptr) return "none";
  if (value->type != REG_BINARY) return "not binary";
  const std::size_t rest = value->data.size() % kRecordBytes;
  const std::string count = fmt::format("{} records", value->data.size() / kRecordBytes);
  return rest == 0 ? count : fmt::format("{} and {} bytes", count, rest);
}

std::string LayoutText(const Registry& registry) {
  const RegistryValue* value = registry.FindValue(kKeyboard, "CurrentActiveLayoutKey");
  if (value == nullptr) return "no active layout";
  std::u16string units = UnitsOf(value->data);
  units.resize(std::min(units.find(u'\0'), units.size()));
  const std::string path = ToUtf8(units);
  const std::string layout = "HKLM\\" + path;
  if (registry.Find(std::string_view(layout)) == nullptr) return path + ": no such layout";
  return fmt::format("{}: {}, {}, {}", path, PlaneText(registry, layout, "ShiftPlane0"),
                     PlaneText(registry, layout, "ShiftPlane1"),
                     PlaneText(registry, layout, "ShiftPlane2"));
}

void Reload() {
  const ThreadState* thread = CurrentThread();
  Kernel& kernel = thread->process.kernel;
  const Scheduler::Lock lock(kernel.mutex);
  kernel.Log(thread, Effect::kDriver,
             fmt::format("keypad reloaded, {}", LayoutText(kernel.registry)));
}

}  // namespace

Program KeypadDriver() {
  return {R"(\Windows\dvlkbd.exe)", [](const std::string& /*command_line*/) -> std::uint32_t {
            const HANDLE event =
                CreateEventW(nullptr, FALSE, FALSE, TEXT("DVL_KEYBOARD_CHANGE_USB"));
            if (event == nullptr) return 1;
            while (WaitForSingleObject(event, INFINITE) == WAIT_OBJECT_0) Reload();
            CloseHandle(event);
            return 0;
          }};
}

}  // namespace sim
