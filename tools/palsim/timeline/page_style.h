// How the page of a timeline looks: light or dark as the browser has it, narrow or wide.
#ifndef TOOLS_PALSIM_TIMELINE_PAGE_STYLE_H_
#define TOOLS_PALSIM_TIMELINE_PAGE_STYLE_H_

#include <string_view>

namespace palsim {

extern const std::string_view kPageStyle;     // CSS
extern const std::string_view kPagePatterns;  // the fills that it refers to

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_PAGE_STYLE_H_
