// The name that a mistyped one may have meant.
#ifndef TOOLS_PALSIM_NEAREST_H_
#define TOOLS_PALSIM_NEAREST_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace palsim {

// How many letters have to be put in, taken out or changed; case does not count.
[[nodiscard]] std::size_t LettersApart(std::string_view left, std::string_view right);

// "; did you mean NAME?", for the one with the fewest letters to change; empty where none is near.
[[nodiscard]] std::string DidYouMean(std::string_view typed,
                                     const std::vector<std::string_view>& names);

}  // namespace palsim

#endif  // TOOLS_PALSIM_NEAREST_H_
