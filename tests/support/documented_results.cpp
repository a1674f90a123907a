#include "tests/support/documented_results.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

struct Comment {
  DocumentedResults results;
  std::vector<std::string> as;  // exports whose results are its own
};

// The name that a word begins with: without a comma behind it, and the like.
std::string NameIn(const std::string& word) {
  const auto is_name_unit = [](unsigned char unit) {
    return std::isalnum(unit) != 0 || unit == '_';
  };
  return {word.begin(), std::ranges::find_if_not(word, is_name_unit)};
}

// Results stand behind "@retval"; another export's are meant by "as PALX", "as for PALX".
Comment ReadComment(const std::string& text) {
  Comment comment;
  std::istringstream words(text);
  bool follows_retval = false;
  bool follows_as = false;
  for (std::string word; words >> word;) {
    const std::string name = NameIn(word);
    if (follows_retval) comment.results.Add(name);
    if (follows_as && (name.starts_with("PAL") || name.starts_with("Pal"))) {
      comment.as.push_back(name);
    }
    follows_retval = word == "@retval";
    const bool is_between = word == "for" || word == "of" || word == "in";
    follows_as = word == "as" || word == "As" || (follows_as && is_between);
  }
  return comment;
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The digits of each result code by its name.
std::map<std::string, std::string> ReadNamedResults() {
  std::map<std::string, std::string> named{{"PAL_E_WIN32", "8007xxxx"},
                                           {"PAL_PWR_E_EVENT", "83EFxxxx"},
                                           {"S_OK", "00000000"},
                                           {"S_FALSE", "00000001"}};
  const std::string text = ReadFile(PROJECT_DIR "/include/palresult.h");
  static const std::regex code(R"(#define (\w+) PAL_RESULT\(0x(\w{8})\))");
  static const std::regex system(R"(#define (\w+) PAL_E_WIN32\((\d+)\))");
  for (std::sregex_iterator row(text.begin(), text.end(), code), end; row != end; ++row) {
    named.try_emplace((*row)[1], (*row)[2]);
  }
  for (std::sregex_iterator row(text.begin(), text.end(), system), end; row != end; ++row) {
    named.try_emplace((*row)[1], fmt::format("8007{:04X}", std::stoul((*row)[2])));
  }
  return named;
}

// The comment of an export is the last one before its declaration.
std::map<std::string, Comment> ReadComments() {
  constexpr std::string_view kDeclared = " PALAPI ";
  std::map<std::string, Comment> comments;
  for (const auto& entry : std::filesystem::directory_iterator(PROJECT_DIR "/include")) {
    const std::string text = ReadFile(entry.path());
    for (std::size_t at = text.find(kDeclared); at != std::string::npos;
         at = text.find(kDeclared, at + 1)) {
      const std::size_t name_begin = at + kDeclared.size();
      const std::string name = NameIn(text.substr(name_begin));
      if (text[name_begin + name.size()] != '(') continue;  // PALAPI's own definition
      const std::size_t begin = text.rfind("/**", at);
      comments[name] = ReadComment(text.substr(begin, at - begin));
    }
  }
  return comments;
}

}  // namespace

void DocumentedResults::Add(const std::string& word) {
  static const std::map<std::string, std::string> results = ReadNamedResults();
  const auto named = results.find(NameIn(word));
  if (named != results.end()) {
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
