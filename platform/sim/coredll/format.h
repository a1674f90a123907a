// The platform's formatted text. _vsnprintf itself is declared with the platform's calls.
#ifndef PLATFORM_SIM_COREDLL_FORMAT_H_
#define PLATFORM_SIM_COREDLL_FORMAT_H_

#include <string>

namespace sim {

// The line that the kernel's debug output shows for a format without arguments, as UTF-8. "%%"
// becomes "%". A conversion that needs an argument becomes "<%s?>", where a device prints garbage:
// no argument is ever read. The line is cut at 255 characters. A null format gives an empty line.
[[nodiscard]] std::string FormatDebugLine(const char16_t* format);

}  // namespace sim

#endif  // PLATFORM_SIM_COREDLL_FORMAT_H_
