// The names of the device types, as the configuration store and the registry keys of the devices
// have them. The row number is the internal device type. PAL_DEVICE_TYPE_UNKNOWN and
// PAL_DEVICE_TYPE_NONE are no rows.
#ifndef SYSINFO_OPTIONS_DEVICE_NAMES_H_
#define SYSINFO_OPTIONS_DEVICE_NAMES_H_

#include <array>

#include "frame/text.h"
#include "platform/wince.h"

namespace pal {

// Rows 46 and 47 have one name: the two device types share a registry key. The device types 54 to
// 56 have no name.
inline constexpr auto kDeviceNames = std::to_array<WideText>({
    TEXT("None"),       TEXT("ENG47"), TEXT("ENG46"),         TEXT("ENG45"),
    TEXT("ENG44"),      TEXT("ASCII"), TEXT("ENG43"),         TEXT("ENG42"),
    TEXT("ENG41"),      TEXT("ENG40"), TEXT("ENG39"),         TEXT("ENG38"),
    TEXT("ENG37"),      TEXT("ENG36"), TEXT("WandEmulation"), TEXT("ENG35"),
    TEXT("ENG34"),      TEXT("ENG33"), TEXT("ENG32"),         TEXT("ENG31"),
    TEXT("ENG30"),      TEXT("ENG29"), TEXT("ENG28"),         TEXT("ENG27"),
    TEXT("ENG26"),      TEXT("ENG25"), TEXT("BTScanner"),     TEXT("ENG24"),
    TEXT("ENG23"),      TEXT("ENG22"), TEXT("ENG21"),         TEXT("ENG20"),
    TEXT("ENG19"),      TEXT("ENG18"), TEXT("ENG17"),         TEXT("ENG16"),
    TEXT("ENG15"),      TEXT("ENG14"), TEXT("ENG13"),         TEXT("ENG12"),
    TEXT("ENG11"),      TEXT("ENG10"), TEXT("ENG09"),         TEXT("SR Dravonel Scanner"),
    TEXT("USBScanner"), TEXT("ENG08"), TEXT("ENG07"),         TEXT("ENG07"),
    TEXT("ENG06"),      TEXT("ENG05"), TEXT("ENG04"),         TEXT("ENG03"),
    TEXT("ENG02"),      TEXT("ENG01"),
});
static_assert(kDeviceNames.size() == 54);
static_assert(kDeviceNames[46] == kDeviceNames[47]);

}  // namespace pal

#endif  // SYSINFO_OPTIONS_DEVICE_NAMES_H_
