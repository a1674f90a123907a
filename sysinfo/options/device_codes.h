// The codes that stand for an internal device in the non-volatile parameters and in datacoll, and
// the internal device types that they mean.
#ifndef SYSINFO_OPTIONS_DEVICE_CODES_H_
#define SYSINFO_OPTIONS_DEVICE_CODES_H_

#include <algorithm>
#include <array>
#include <optional>

#include "frame/text.h"
#include "include/palmfgopt.h"
#include "platform/wince.h"
#include "sysinfo/options/device_names.h"

namespace pal {

struct DeviceCode {
  BYTE code;
  DWORD device_type;  // the row of kDeviceNames
  WideText name;      // of that row; empty where the type has none
};

// The codes 0x05 and 0x06 stand for one type.
inline constexpr auto kDeviceCodes = std::to_array<DeviceCode>({
    {0x00, PAL_DEVICE_TYPE_NONE, {}},
    {0x01, 11, TEXT("ENG38")},
    {0x02, 15, TEXT("ENG35")},
    {0x03, 8, TEXT("ENG41")},
    {0x04, 16, TEXT("ENG34")},
    {0x05, 10, TEXT("ENG39")},
    {0x06, 10, TEXT("ENG39")},
    {0x0C, 34, TEXT("ENG17")},
    {0x08, 28, TEXT("ENG23")},
    {0x07, 27, TEXT("ENG24")},
    {0x10, 37, TEXT("ENG14")},
    {0x09, 30, TEXT("ENG21")},
    {0x0A, 31, TEXT("ENG20")},
    {0x16, 47, TEXT("ENG07")},
    {0x13, 42, TEXT("ENG09")},
    {0x17, 50, TEXT("ENG04")},
    {0x18, 51, TEXT("ENG03")},
    {0x11, 38, TEXT("ENG13")},
    {0x19, 52, TEXT("ENG02")},
    {0x1F, 53, TEXT("ENG01")},
    {0x1A, 54, {}},
    {0x1B, 55, {}},
    {0x1C, 56, {}},
});
static_assert(kDeviceCodes.size() == 23);
static_assert(std::all_of(kDeviceCodes.begin(), kDeviceCodes.end(),
                          [](const DeviceCode& row) {
                            return row.device_type < kDeviceNames.size()
                                       ? row.name == kDeviceNames[row.device_type]
                                       : row.name.empty();
                          }),
              "a type and its name belong to different rows of the name table");

// Nothing for a code that stands for no type.
constexpr std::optional<DWORD> FindDeviceType(DWORD code) {
  for (const DeviceCode& row : kDeviceCodes) {
    if (row.code == code) return row.device_type;
  }
  return std::nullopt;
}

}  // namespace pal

#endif  // SYSINFO_OPTIONS_DEVICE_CODES_H_
