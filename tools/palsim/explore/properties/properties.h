// The properties by their subject: each subject has a file.
#ifndef TOOLS_PALSIM_EXPLORE_PROPERTIES_PROPERTIES_H_
#define TOOLS_PALSIM_EXPLORE_PROPERTIES_PROPERTIES_H_

#include <span>

#include "tools/palsim/explore/property.h"

namespace palsim {

[[nodiscard]] std::span<const PropertyRow> AnswerProperties();
[[nodiscard]] std::span<const PropertyRow> CallProperties();
[[nodiscard]] std::span<const PropertyRow> SettingProperties();
[[nodiscard]] std::span<const PropertyRow> KeypadProperties();
[[nodiscard]] std::span<const PropertyRow> SecurityProperties();
[[nodiscard]] std::span<const PropertyRow> StorageProperties();

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_PROPERTIES_PROPERTIES_H_
