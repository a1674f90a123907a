// The exports as the public headers declare them: for usage lines, and for numbers that have names.
#ifndef TOOLS_PALSIM_DECLARATIONS_H_
#define TOOLS_PALSIM_DECLARATIONS_H_

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace palsim {

struct Parameter {
  std::string_view type;  // "DWORD*"; empty: there is none
  std::string_view name;
  std::string_view direction;    // "in", "out" or "in,out"
  std::string_view unit;         // "minutes"; may be empty
  std::string_view enumeration;  // whose numbers it takes or gives; empty: none
};

struct Declaration {
  static constexpr std::size_t kMostParameters = 5;

  std::string_view name;
  std::string_view header;    // "palkey.h"
  std::string_view family;    // the folder, "keypad"
  std::string_view result;    // the type, "HRESULT"
  std::string_view function;  // "PALKEYGetType"; several names may be one function
  std::array<Parameter, kMostParameters> parameters;
};

// A name for all codes that agree with `code` in the bits of `mask`. A name that ends in "(error)"
// stands for many codes, and the other bits are the error.
struct ResultName {
  std::string_view name;
  std::uint32_t code;
  std::uint32_t mask;
};

// nullptr where no header declares it.
[[nodiscard]] const Declaration* FindDeclaration(std::string_view export_name);

// All that palresult.h names.
[[nodiscard]] std::span<const ResultName> ResultNames();
// Those that the header gives for this export.
[[nodiscard]] std::vector<ResultName> AnswersOf(std::string_view export_name);

// The number of "PAL_KEY_ACTION_SCAN", or of "TRUE" and "FALSE".
[[nodiscard]] std::optional<std::uint32_t> EnumeratorNumber(std::string_view name);
// Empty where the enumeration has no such number.
[[nodiscard]] std::string_view EnumeratorName(std::string_view enumeration, std::uint32_t number);
[[nodiscard]] std::vector<std::string_view> EnumeratorsOf(std::string_view enumeration);

}  // namespace palsim

#endif  // TOOLS_PALSIM_DECLARATIONS_H_
