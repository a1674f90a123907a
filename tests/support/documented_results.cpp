#include "tests/support/documented_results.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>
#include <vector>

namespace {

const std::map<std::string, std::string> kNamedResults{
    {"S_OK", "00000000"},
    {"E_FAIL", "80004005"},
    {"E_NOTIMPL", "80004001"},
    {"E_INVALIDARG", "80070057"},
};

struct Comment {
  DocumentedResults results;
  std::vector<std::string> as;  // exports whose results are its own
};

using Matches = std::sregex_iterator;

Comment ReadComment(const std::string& text) {
  static const std::regex result_word(R"(@retval\s+(\w+))");
  static const std::regex as_export(
      R"(\b(?:[Aa]s|as (?:for|of|in)|same function as) (P(?:AL|al)\w+))");
  Comment comment;
  for (Matches at(text.begin(), text.end(), result_word); at != Matches(); ++at) {
    comment.results.Add((*at)[1]);
  }
  for (Matches at(text.begin(), text.end(), as_export); at != Matches(); ++at) {
    comment.as.push_back((*at)[1]);
  }
  return comment;
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The comment of an export is the last one before its declaration.
std::map<std::string, Comment> ReadComments() {
  static const std::regex declaration(R"(\n\w+ PALAPI (\w+)\()");
  std::map<std::string, Comment> comments;
  for (const auto& entry : std::filesystem::directory_iterator(PROJECT_DIR "/include")) {
    const std::string text = ReadFile(entry.path());
    for (Matches at(text.begin(), text.end(), declaration); at != Matches(); ++at) {
      const auto end = static_cast<std::size_t>(at->position());
      const std::size_t begin = text.rfind("/**", end);
      comments[(*at)[1]] = ReadComment(text.substr(begin, end - begin));
    }
  }
  return comments;
}

}  // namespace

void DocumentedResults::Add(const std::string& word) {
  const auto named = kNamedResults.find(word);
  if (named != kNamedResults.end()) {
    patterns_.insert(named->second);
  } else if (word.starts_with("0x") && word.size() == 10) {
    patterns_.insert(word.substr(2));
  } else if (std::ranges::all_of(word, [](char unit) { return unit >= '0' && unit <= '9'; })) {
    patterns_.insert(fmt::format("{:08X}", std::stoul(word)));
  } else {
    throw std::runtime_error("a header documents the result '" + word + "'");
  }
}

void DocumentedResults::Add(const DocumentedResults& others) {
  patterns_.insert(others.patterns_.begin(), others.patterns_.end());
}

bool DocumentedResults::Has(std::uint32_t result) const {
  const std::string digits = fmt::format("{:08X}", result);
  return std::ranges::any_of(patterns_, [&digits](const std::string& pattern) {
    return std::ranges::equal(pattern, digits,
                              [](char wanted, char is) { return wanted == 'x' || wanted == is; });
  });
}

const std::map<std::string, DocumentedResults>& ResultsByExport() {
  static const std::map<std::string, DocumentedResults> results = [] {
    const std::map<std::string, Comment> comments = ReadComments();
    std::map<std::string, DocumentedResults> found;
    for (const auto& [name, comment] : comments) found[name] = comment.results;
    // Each round takes over one more step of "as".
    for (int round = 0; round < 4; ++round) {
      for (const auto& [name, comment] : comments) {
        for (const std::string& other : comment.as) found[name].Add(found.at(other));
      }
    }
    return found;
  }();
  return results;
}
