// Questions to a platform about the facts that the library and the simulated device rest on. The
// same rows run on the simulated device, on a handheld (palcheck.exe) and on any other platform.
// docs/platform.md has every row, with the answers.
//
// Each row is harmless and undoes what it did. A row sees nothing of another.
#ifndef PLATFORM_CONFORMANCE_ROWS_H_
#define PLATFORM_CONFORMANCE_ROWS_H_

#include <span>

#include "platform/wince.h"

namespace conformance {

// What a platform answered, as one line of text.
class Answer {
 public:
  // Adds words as _vsnprintf makes them, behind a space. What does not fit is cut.
  void Add(const char* format, ...);
  [[nodiscard]] const char* text() const { return text_; }

 private:
  char text_[200] = {};
  size_t length_ = 0;
};

// Where the answer of the simulated device comes from.
enum class Basis {
  kDocumented,  // the platform's documentation says it
  kChosen,      // nobody says it: the simulated device does it in one of several ways
};

struct Row {
  const char* name;
  Basis basis;
  void (*ask)(Answer& answer);
};

[[nodiscard]] std::span<const Row> RegistryRows();
[[nodiscard]] std::span<const Row> FileRows();
[[nodiscard]] std::span<const Row> ObjectRows();
[[nodiscard]] std::span<const Row> SystemRows();

// Calls `visit(row)` with every row.
template <typename Visit>
void ForEachRow(Visit visit) {
  for (const auto rows : {RegistryRows(), FileRows(), ObjectRows(), SystemRows()}) {
    for (const Row& row : rows) visit(row);
  }
}

}  // namespace conformance

#endif  // PLATFORM_CONFORMANCE_ROWS_H_
