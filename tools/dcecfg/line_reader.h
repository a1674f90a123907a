// One line of the text form, read token by token.
#ifndef TOOLS_DCECFG_LINE_READER_H_
#define TOOLS_DCECFG_LINE_READER_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "tools/dcecfg/limits.h"

namespace dcecfg {

struct Token {
  std::string text;  // of a quoted text what it stands for
  std::size_t column = 0;
  bool quoted = false;
};

// Tokens are words and texts in quotes with blanks between them; # begins a comment.
// Every function throws TextError where the line does not go on as it wants.
class LineReader {
 public:
  LineReader(std::string_view line, std::size_t number);

  [[nodiscard]] bool AtEnd() const { return at_ == line_.size(); }
  [[nodiscard]] std::size_t number() const { return number_; }

  // `wanted` is what the message names.
  Token Next(std::string_view wanted);
  Token Word(std::string_view wanted);
  Token Text(std::string_view wanted);
  // Digits, or "" for no bytes.
  std::string Hexadecimal();
  // Decimal, or hexadecimal with 0x.
  LONG Number(std::string_view wanted, LONG minimum, LONG maximum);
  LONG Dword();
  void ExpectEnd() const;

  [[noreturn]] void Fail(std::size_t column, const std::string& what) const;
  void FailOn(const Fault& fault, std::size_t column) const;

 private:
  void SkipBlanks();
  void TakeWord(Token& token);
  void TakeQuoted(Token& token);
  char TakeUnit();
  char TakeEscape();

  std::string_view line_;
  std::size_t number_;
  std::size_t at_ = 0;
};

}  // namespace dcecfg

#endif  // TOOLS_DCECFG_LINE_READER_H_
