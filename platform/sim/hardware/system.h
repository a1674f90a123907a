// What the operating system tells about itself and the device.
#ifndef PLATFORM_SIM_HARDWARE_SYSTEM_H_
#define PLATFORM_SIM_HARDWARE_SYSTEM_H_

#include <cstdint>
#include <string_view>

#include "platform/sim/hardware/query_answer.h"

namespace sim {

struct OsVersion {
  std::uint32_t major = 5;
  std::uint32_t minor = 2;
  std::uint32_t build = 19202;
  std::uint32_t platform = 3;  // Windows CE
  std::uint32_t error = 0;     // not 0: the query fails with it
};

struct SystemInformation {
  QueryAnswer oem_information = NoAnswer();       // UTF-16
  QueryAnswer platform_type = NoAnswer();         // UTF-16
  QueryAnswer firmware_information = NoAnswer();  // 128 bytes, the version's text at byte 63
  QueryAnswer device_id = NoAnswer();             // a DEVICE_ID record
  OsVersion os_version;
};

[[nodiscard]] QueryAnswer FirmwareInformation(std::string_view version);
// A record without a preset id. Its platform id is this text, behind a header of eight bytes.
[[nodiscard]] QueryAnswer DeviceIdRecord(std::string_view text);

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_SYSTEM_H_
