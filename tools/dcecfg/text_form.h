// The text form of configuration-store files; docs/dcecfg.md describes it.
#ifndef TOOLS_DCECFG_TEXT_FORM_H_
#define TOOLS_DCECFG_TEXT_FORM_H_

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/wince.h"

namespace dcecfg {

// What is wrong with a text, and where; both are counted from 1.
class TextError : public std::runtime_error {
 public:
  TextError(std::size_t line, std::size_t column, const std::string& what)
      : std::runtime_error(what), line_(line), column_(column) {}
  [[nodiscard]] std::size_t line() const { return line_; }
  [[nodiscard]] std::size_t column() const { return column_; }

 private:
  std::size_t line_;
  std::size_t column_;
};

// The file that a text describes. Throws TextError where the text is wrong, or where the device
// would not take what it says.
[[nodiscard]] std::vector<BYTE> Build(std::string_view text);

// The text of any bytes whatever: building it gives these bytes. What is no well-formed statement
// stands there as "bytes".
[[nodiscard]] std::string Dump(std::span<const BYTE> file);

}  // namespace dcecfg

#endif  // TOOLS_DCECFG_TEXT_FORM_H_
