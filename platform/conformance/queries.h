// The library's exports that change nothing, each called with arguments of its types.
#ifndef PLATFORM_CONFORMANCE_QUERIES_H_
#define PLATFORM_CONFORMANCE_QUERIES_H_

#include <span>

#include "platform/conformance/rows.h"

namespace conformance {

struct Query {
  const char* name;
  const WCHAR* wide_name;
  // Adds the result, and what the export wrote to its out-parameters.
  void (*ask)(Answer& answer, FARPROC entry);
};

[[nodiscard]] std::span<const Query> Queries();

}  // namespace conformance

#endif  // PLATFORM_CONFORMANCE_QUERIES_H_
