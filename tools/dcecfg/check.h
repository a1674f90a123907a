// What the device would do with a configuration store, asked of the library's own parser.
#ifndef TOOLS_DCECFG_CHECK_H_
#define TOOLS_DCECFG_CHECK_H_

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "platform/wince.h"

namespace dcecfg {

struct CheckReport {
  std::string text;  // errors, warnings, the values as registry-import lines, and a summary
  std::size_t values = 0;
  std::size_t errors = 0;
  std::size_t warnings = 0;
  bool refused = false;   // nothing at all would be written
  bool is_other = false;  // no section is in the file

  [[nodiscard]] bool ok() const { return errors == 0 && !refused && !is_other; }
};

// Not for two threads at once: the parser's trace lines come through one function for all.
[[nodiscard]] CheckReport Check(std::span<const BYTE> file);

// "KEY:NAME" of the only value that a faultless file would write, with the key's full path; nothing
// for any other file.
[[nodiscard]] std::optional<std::string> OnlyKeyOf(std::span<const BYTE> file);

}  // namespace dcecfg

#endif  // TOOLS_DCECFG_CHECK_H_
