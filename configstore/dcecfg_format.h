// What the sections of a configuration store have in common. Internal to the parser.
#ifndef CONFIGSTORE_DCECFG_FORMAT_H_
#define CONFIGSTORE_DCECFG_FORMAT_H_

#include <string_view>

#include "frame/trace.h"
#include "platform/wince.h"

namespace pal {

namespace dcecfg {

inline constexpr TraceSource kTrace{Facility::kConfigStore};

inline constexpr BYTE kDirectSection = 0xBB;
inline constexpr BYTE kDscpSection = 0xCC;
inline constexpr BYTE kStringKey = 0xAA;
inline constexpr BYTE kDwordKey = 0xAB;
inline constexpr BYTE kBinaryKey = 0xAC;
inline constexpr BYTE kEndOfBlock = 0xDD;
inline constexpr BYTE kEndOfSubsection = 0xEE;
inline constexpr BYTE kEndOfSection = 0xFF;

// Where keys without a root's name stand. Any name that begins so counts as a root's; one that is
// none is looked up as HKEY_LOCAL_MACHINE when the value is written.
inline constexpr std::string_view kBaseKey = R"(HKEY_LOCAL_MACHINE\Software\Dravonel\)";
constexpr bool HasRoot(std::string_view key) {
  return key.starts_with("HKEY");
}

inline void TraceTooLong() {
  kTrace.Error("Key, value name or value too long. Entry skipped.");
}

}  // namespace dcecfg

}  // namespace pal

#endif  // CONFIGSTORE_DCECFG_FORMAT_H_
