#include "tools/dcecfg/line_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "tools/dcecfg/quote.h"
#include "tools/dcecfg/text_form.h"

namespace dcecfg {
namespace {

constexpr std::string_view kBlanks = " \t\r";

// All of a text as a number.
std::optional<LONG> ParseNumber(std::string_view text, int base) {
  LONG number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc{} || stop != end) return std::nullopt;
  return number;
}

bool HasHexadecimalPrefix(std::string_view text) {
  return text.starts_with("0x") && !text.starts_with("0x-");
}

std::optional<LONG> ParseNumber(std::string_view text) {
  return HasHexadecimalPrefix(text) ? ParseNumber(text.substr(2), 16) : ParseNumber(text, 10);
}

}  // namespace

LineReader::LineReader(std::string_view line, std::size_t number) : line_(line), number_(number) {
  SkipBlanks();
}

void LineReader::Fail(std::size_t column, const std::string& what) const {
  throw TextError(number_, column, what);
}

void LineReader::FailOn(const Fault& fault, std::size_t column) const {
  if (fault) Fail(column, *fault);
}

void LineReader::SkipBlanks() {
  at_ = std::min(line_.find_first_not_of(kBlanks, at_), line_.size());
  if (!AtEnd() && line_[at_] == '#') at_ = line_.size();
}

Token LineReader::Next(std::string_view wanted) {
  if (AtEnd()) Fail(line_.size() + 1, fmt::format("{} is missing", wanted));
  Token token{"", at_ + 1, line_[at_] == '"'};
  token.quoted ? TakeQuoted(token) : TakeWord(token);
  SkipBlanks();
  return token;
}

void LineReader::TakeWord(Token& token) {
  const std::size_t end = std::min(line_.find_first_of(" \t\r#\"", at_), line_.size());
  token.text = line_.substr(at_, end - at_);
  at_ = end;
}

void LineReader::TakeQuoted(Token& token) {
  ++at_;
  while (!AtEnd() && line_[at_] != '"') token.text += TakeUnit();
  if (AtEnd()) Fail(token.column, "the text has no closing quote");
  ++at_;
}

char LineReader::TakeUnit() {
  const char unit = line_[at_];
  if (!IsPrintable(unit)) {
    Fail(at_ + 1, "a text holds printable ASCII; write any other of its bytes as \\xNN");
  }
  ++at_;
  return unit == '\\' ? TakeEscape() : unit;
}

// The backslash is taken.
char LineReader::TakeEscape() {
  const std::string_view rest = line_.substr(at_);
  if (rest.starts_with('\\') || rest.starts_with('"')) {
    ++at_;
    return rest.front();
  }
  const auto byte =
      rest.starts_with('x') && rest.size() >= 3 ? ParseNumber(rest.substr(1, 2), 16) : std::nullopt;
  if (!byte || *byte < 0) Fail(at_, R"(in a text a backslash is \\, a quote \" and a byte \xNN)");
  if (*byte == 0) Fail(at_, "a text ends at its first zero byte, so it holds no \\x00");
  at_ += 3;
  return static_cast<char>(*byte);
}

Token LineReader::Word(std::string_view wanted) {
  Token token = Next(wanted);
  if (token.quoted) Fail(token.column, fmt::format("{} stands without quotes", wanted));
  return token;
}

Token LineReader::Text(std::string_view wanted) {
  Token token = Next(wanted);
  if (!token.quoted) Fail(token.column, fmt::format("{} stands in quotes", wanted));
  return token;
}

std::string LineReader::Hexadecimal() {
  const Token token = Next("the hexadecimal data");
  if (token.quoted && !token.text.empty()) {
    Fail(token.column, "hexadecimal data stand without quotes");
  }
  FailOn(FaultOfHexadecimal(token.text), token.column);
  return token.text;
}

LONG LineReader::Number(std::string_view wanted, LONG minimum, LONG maximum) {
  const Token token = Word(wanted);
  const auto number = ParseNumber(token.text);
  if (!number || *number < minimum || *number > maximum) {
    Fail(token.column, fmt::format("{} is a number from {} to {}", wanted, minimum, maximum));
  }
  return *number;
}

LONG LineReader::Dword() {
  const Token token = Word("the value");
  const auto number = ParseNumber(token.text);
  const LONG maximum = HasHexadecimalPrefix(token.text) ? 0xFFFF : kMaxDword;
  if (!number || *number < kMinDword || *number > maximum) {
    Fail(token.column,
         fmt::format("a DWORD is a number from {} to {}, or 0x0 to 0xFFFF, of which 0x8000 and up "
                     "are negative",
                     kMinDword, kMaxDword));
  }
  return *number;
}

void LineReader::ExpectEnd() const {
  if (!AtEnd()) Fail(at_ + 1, "the line goes on behind its end; each statement has its own line");
}

}  // namespace dcecfg
