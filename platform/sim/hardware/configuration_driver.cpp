#include "platform/sim/hardware/configuration_driver.h"

namespace sim {
namespace {

constexpr std::uint32_t kInsufficientBuffer = 122;

}  // namespace

std::string_view ConfigurationDriver::CodeName(std::uint32_t code) const {
  if (code == kGetBootOption) return "get boot option";
  return code == kSetBootOption ? "set boot option" : std::string_view();
}

std::uint32_t ConfigurationDriver::Control(DriverRequest& request) {
  if (request.code == kSetBootOption) {
    if (request.in_bytes > 0xFF) return kDriverInvalidParameter;
    set_option_ = static_cast<std::uint8_t>(request.in_bytes);
    return 0;
  }
  if (request.out.empty()) return kInsufficientBuffer;
  request.out[0] = boot_option();
  request.returned = 1;
  return 0;
}

}  // namespace sim
