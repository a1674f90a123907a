// The marker bytes of a configuration store, and where its keys stand.
#ifndef CONFIGSTORE_DCECFG_FORMAT_H_
#define CONFIGSTORE_DCECFG_FORMAT_H_

#include <string_view>

#include "platform/wince.h"

namespace pal::dcecfg {

inline constexpr BYTE kDirectSection = 0xBB;
inline constexpr BYTE kDscpSection = 0xCC;
inline constexpr BYTE kStringKey = 0xAA;
inline constexpr BYTE kDwordKey = 0xAB;
inline constexpr BYTE kBinaryKey = 0xAC;
inline constexpr BYTE kEndOfBlock = 0xDD;
inline constexpr BYTE kEndOfSubsection = 0xEE;
inline constexpr BYTE kEndOfSection = 0xFF;

// A key without the name of a root stands below this one.
inline constexpr std::string_view kBaseKey = R"(HKEY_LOCAL_MACHINE\Software\Dravonel\)";

// Any name that begins so counts as a root's name; one that names no root stands for
// HKEY_LOCAL_MACHINE when the value is written.
constexpr bool HasRoot(std::string_view key) {
  return key.starts_with("HKEY");
}

}  // namespace pal::dcecfg

#endif  // CONFIGSTORE_DCECFG_FORMAT_H_
