// The platform's formatted text. _vsnprintf itself is declared with the platform's calls.
#ifndef PLATFORM_SIM_COREDLL_FORMAT_H_
#define PLATFORM_SIM_COREDLL_FORMAT_H_

#include <string>

namespace sim {

// What the kernel's debug output shows of a format that came without arguments, as UTF-8: "%%" is
// "%", a conversion that wants an argument shows as "<%s?>" in place of the garbage that a device
// prints, and the line is cut at 255 characters. No argument is ever read. A null format is an
// empty line.
[[nodiscard]] std::string FormatDebugLine(const char16_t* format);

}  // namespace sim

#endif  // PLATFORM_SIM_COREDLL_FORMAT_H_
