#include "tools/dcecfg/quote.h"

#include <fmt/format.h>

namespace dcecfg {

std::string Escape(std::string_view text) {
  std::string result;
  for (const char unit : text) {
    result += IsPrintable(unit) ? std::string(1, unit)
                                : fmt::format("\\x{:02X}", static_cast<unsigned char>(unit));
  }
  return result;
}

std::string Quote(std::string_view text) {
  std::string result = "\"";
  for (const char unit : text) {
    if (unit == '\\' || unit == '"') result += '\\';
    result += Escape({&unit, 1});
  }
  return result + '"';
}

}  // namespace dcecfg
