// What the public headers say that an export answers.
#ifndef TESTS_SUPPORT_DOCUMENTED_RESULTS_H_
#define TESTS_SUPPORT_DOCUMENTED_RESULTS_H_

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

// The results of one export, as the table that is made from the headers has them.
class DocumentedResults {
 public:
  // All results that agree with `code` in the bits of `mask`.
  void Add(std::uint32_t code, std::uint32_t mask) { rows_.emplace_back(code, mask); }
  [[nodiscard]] bool Has(std::uint32_t result) const;

 private:
  std::vector<std::pair<std::uint32_t, std::uint32_t>> rows_;
};

// Of every export, by its name.
const std::map<std::string, DocumentedResults>& ResultsByExport();

#endif  // TESTS_SUPPORT_DOCUMENTED_RESULTS_H_
