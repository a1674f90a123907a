// Each export as it is measured: how the device is prepared, and one call.
#ifndef BENCH_EXPORT_ROWS_H_
#define BENCH_EXPORT_ROWS_H_

#include <span>

#include "bench/subject.h"

namespace bench {

// What a call gave, so that the builds can be compared.
struct Answer {
  std::uint32_t result;
  std::uint32_t number;
  std::uint32_t second;
  std::int32_t degrees;
  PALComPortPower port;
  char text[128];
  char second_text[128];
  WCHAR wide[128];
  WCHAR second_wide[128];
};

struct Row {
  const char* name;  // of the export
  void (*call)(Subject& subject, Answer& answer);
  // Once, before the calls.
  void (*prepare)(Subject& subject) = nullptr;
  // Behind each call, to bring about what was before it.
  void (*undo)(Subject& subject) = nullptr;
  // Once, behind the calls.
  void (*finish)(Subject& subject) = nullptr;
};

[[nodiscard]] std::span<const Row> Rows();

}  // namespace bench

#endif  // BENCH_EXPORT_ROWS_H_
