// What a person reads and writes: numbers of the library by their names, and words for a shell.
#ifndef TOOLS_PALSIM_NAMES_H_
#define TOOLS_PALSIM_NAMES_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "include/paltypes.h"

namespace palsim {

// "E_FAIL", "PAL_E_WIN32(31)"; a number where it has no name.
[[nodiscard]] std::string ResultMeaning(HRESULT result);
// "0x80004005 E_FAIL".
[[nodiscard]] std::string ResultText(HRESULT result);
// The code that a person means: a name such as E_FAIL or PAL_E_WIN32(31), or a number. Throws
// UsageError.
[[nodiscard]] std::uint32_t ParseResult(const std::string& text);
// "error keypad" for 0xC3ED0000.
[[nodiscard]] std::string CategoryText(std::uint32_t category);

// A word as a shell reads it back.
[[nodiscard]] std::string Quoted(const std::string& word);

}  // namespace palsim

#endif  // TOOLS_PALSIM_NAMES_H_
