#include "tools/palsim/explore/properties/properties.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/palsim/nearest.h"
#include "tools/palsim/usage_error.h"

namespace palsim {

std::span<const PropertyRow> Properties() {
  static const std::vector<PropertyRow> rows = [] {
    std::vector<PropertyRow> all;
    for (const auto part : {AnswerProperties(), CallProperties(), SettingProperties(),
                            KeypadProperties(), SecurityProperties(), StorageProperties()}) {
      all.insert(all.end(), part.begin(), part.end());
    }
    return all;
  }();
  return rows;
}

const PropertyRow& FindProperty(std::string_view name) {
  const auto rows = Properties();
  const auto row = std::ranges::find(rows, name, &PropertyRow::name);
  if (row != rows.end()) return *row;
  std::vector<std::string_view> names(rows.size());
  std::ranges::transform(rows, names.begin(), &PropertyRow::name);
  throw UsageError(fmt::format("there is no property '{}'{}", name, DidYouMean(name, names)));
}

}  // namespace palsim
