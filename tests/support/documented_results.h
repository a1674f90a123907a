// What the public headers say that an export answers.
#ifndef TESTS_SUPPORT_DOCUMENTED_RESULTS_H_
#define TESTS_SUPPORT_DOCUMENTED_RESULTS_H_

#include <cstdint>
#include <map>
#include <set>
#include <string>

// The results of one export, from the "@retval" of its comment and of the exports that it says to
// be "as".
class DocumentedResults {
 public:
  // "S_OK", "19" or "0x83EF0011"; "x" stands for any digit.
  void Add(const std::string& word);
  void Add(const DocumentedResults& others);
  [[nodiscard]] bool Has(std::uint32_t result) const;

 private:
  std::set<std::string> patterns_;  // eight digits each
};

// Of every export, by its name.
const std::map<std::string, DocumentedResults>& ResultsByExport();

#endif  // TESTS_SUPPORT_DOCUMENTED_RESULTS_H_
