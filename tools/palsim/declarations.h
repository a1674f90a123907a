// The exports as the public headers declare them: for usage lines, and for numbers that have names.
#ifndef TOOLS_PALSIM_DECLARATIONS_H_
#define TOOLS_PALSIM_DECLARATIONS_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace palsim {

struct Parameter {
  std::string_view type;  // "DWORD*"; empty: there is none
  std::string_view name;
  std::string_view enumeration;  // whose numbers it takes or gives; empty: none
};

struct Declaration {
  static constexpr std::size_t kMostParameters = 5;

  std::string_view name;
  std::string_view result;  // "HRESULT"
  std::array<Parameter, kMostParameters> parameters;
};

// nullptr where no header declares it.
[[nodiscard]] const Declaration* FindDeclaration(std::string_view export_name);

// The number of "PAL_KEY_ACTION_SCAN", or of "TRUE" and "FALSE".
[[nodiscard]] std::optional<std::uint32_t> EnumeratorNumber(std::string_view name);
// Empty where the enumeration has no such number.
[[nodiscard]] std::string_view EnumeratorName(std::string_view enumeration, std::uint32_t number);
[[nodiscard]] std::vector<std::string_view> EnumeratorsOf(std::string_view enumeration);

}  // namespace palsim

#endif  // TOOLS_PALSIM_DECLARATIONS_H_
