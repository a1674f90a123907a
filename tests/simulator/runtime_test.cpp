#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/sim/coredll/format.h"
#include "platform/wince.h"

namespace {

int FormatInto(char* buffer, size_t count, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int result = _vsnprintf(buffer, count, format, arguments);
  va_end(arguments);
  return result;
}

template <typename... Arguments>
std::string Format(const char* format, Arguments... arguments) {
  std::string buffer(4096, '\xCC');
  const int length = FormatInto(buffer.data(), buffer.size(), format, arguments...);
  if (length < 0) return "<failed>";
  if (buffer[static_cast<size_t>(length)] != '\0') return "<no terminator>";
  return buffer.substr(0, static_cast<size_t>(length));
}

struct Row {
  std::string formatted;
  const char* expected;
};

TEST(Vsnprintf, FollowsThePlatformsRules) {
  const WCHAR* wide = TEXT("wide\x00E9\x0416");
  const WCHAR* no_wide = nullptr;
  const char* no_text = nullptr;
  const char open_end[3] = {'a', 'b', 'c'};
  const WCHAR open_wide[2] = {u'x', u'y'};
  void* pointer = reinterpret_cast<void*>(static_cast<uintptr_t>(0x12300ABCDEF));
  const std::vector<Row> rows = {
      {Format("%s|%ls|%S|%ws|%hs|%hS", "narrow", wide, wide, wide, "h", "hS"),
       "narrow|wide\xE9?|wide\xE9?|wide\xE9?|h|hS"},
      {Format("%s %ls %S %.3s", no_text, no_wide, no_wide, no_text), "(null) (null) (null) (nu"},
      {Format("%.3s|%.2ls|%.*s|%.s", open_end, open_wide, 2, open_end, open_end), "abc|xy|ab|"},
      {Format("%5s|%-5s|%*s|%-*s|%*s", "a", "b", 4, "c", 4, "d", -4, "e"),
       "    a|b    |   c|d   |e   "},
      {Format("%c%lc%C%3c|", 'a', 0x416, u'b', 'c'), "a?b  c|"},
      {Format("%d %i %ld %u %lu", -1, INT32_MIN, -2, 0xFFFFFFFF, 0xFFFFFFFE),
       "-1 -2147483648 -2 4294967295 4294967294"},
      {Format("%hd %hu %hx", 0x18000, 0x1FFFF, 0x12345), "-32768 65535 2345"},
      {Format("%I64d %I64u %I64x %lld", INT64_MIN, UINT64_MAX, uint64_t{1} << 63, int64_t{-5}),
       "-9223372036854775808 18446744073709551615 8000000000000000 -5"},
      {Format("%x %X %lx %08X %#x %#x %#o %o", 0xBEEF, 0xBEEF, 0xBEEF, 0xBEEF, 255, 0, 8, 8),
       "beef BEEF beef 0000BEEF 0xff 0 010 10"},
      {Format("%+d|% d|%+5d|%-5d|%05d|%-05d|%.3d|%6.3d|%06.3d|%.0d|", 5, 5, 5, 5, -5, 5, 5, 5, 5,
              0),
       "+5| 5|   +5|5    |-0005|5    |005|   005|   005||"},
      {Format("%p|%12p|%-10p|", pointer, pointer, nullptr), "00ABCDEF|    00ABCDEF|00000000  |"},
      {Format("%.2f|%8.3f|%08.1f|%+e|%g", 2.125, -1.5, -2.5, 1.0, 0.5),
       "2.12|  -1.500|-00002.5|+1.000000e+00|0.5"},
      {Format("100%% %q %-5! %d%", 7), "100% %q %-5! 7%"},
      {Format("%n%d", nullptr, 7), "%n7"},
  };
  for (const Row& row : rows) EXPECT_EQ(row.formatted, row.expected);
}

TEST(Vsnprintf, WritesNothingBeyondTheBuffer) {
  struct Fit {
    size_t count;
    int result;
    std::string buffer;
  };
  const std::vector<Fit> fits = {
      {8, 6, std::string("abc 42\0.", 8)},
      {7, 6, std::string("abc 42\0.", 8)},
      {6, 6, "abc 42.."},  // exactly full: no terminator
      {5, -1, "abc 4..."},
      {0, -1, "........"},
  };
  for (const Fit& fit : fits) {
    std::string buffer(8, '.');
    EXPECT_EQ(FormatInto(buffer.data(), fit.count, "abc %d", 42), fit.result) << fit.count;
    EXPECT_EQ(buffer, fit.buffer) << fit.count;
  }
  // Widths and precisions that no buffer holds.
  std::string buffer(8, '.');
  for (const char* format : {"%2147483647d", "%99999999999d", "%.2147483647d", "%0999999999x"}) {
    EXPECT_EQ(FormatInto(buffer.data(), 4, format, 0), -1) << format;
  }
  EXPECT_EQ(FormatInto(buffer.data(), 4, "%-2147483647s", "x"), -1);
  EXPECT_EQ(FormatInto(buffer.data(), 4, "%.99999f", 1e300), -1);
  EXPECT_EQ(FormatInto(nullptr, 8, "%d", 1), -1);
  EXPECT_EQ(FormatInto(buffer.data(), 4, "%*d", INT32_MIN, 1), -1);
  EXPECT_EQ(buffer.substr(4), "....");
  EXPECT_EQ(FormatInto(buffer.data(), 8, nullptr), -1);
}

TEST(FormatDebugLine, ShowsConversionsInsteadOfReadingArguments) {
  struct Line {
    std::u16string format;
    std::string expected;
  };
  const std::vector<Line> lines = {
      {u"plain 100%% \x00E9 %%s", "plain 100% \xC3\xA9 %s"},
      {u"%s %-08.*ls|%n", "<%s?> <%-08.*ls?>|<%n?>"},
      {u"%q %", "%q %"},
      {u"%", "%"},
      {u"% \x0164", "% \xC5\xA4"},  // no "d", although its low byte is one
      {std::u16string(300, u'x'), std::string(255, 'x')},
      {std::u16string(254, u'x') + u"%s", std::string(254, 'x') + "<"},
  };
  for (const Line& line : lines)
    EXPECT_EQ(sim::FormatDebugLine(line.format.c_str()), line.expected);
  EXPECT_EQ(sim::FormatDebugLine(nullptr), "");
}

TEST(RuntimeText, ConvertsByteForUnitWithinTheCount) {
  WCHAR wide[4] = {u'.', u'.', u'.', u'.'};
  EXPECT_EQ(mbstowcs(static_cast<WCHAR*>(nullptr), "four", 0), 4U);
  EXPECT_EQ(mbstowcs(wide, "a\xE9", 4), 2U);
  EXPECT_EQ(std::u16string(wide, 4), std::u16string(u"a\x00E9\0.", 4));
  EXPECT_EQ(mbstowcs(wide, "four5", 3), 3U);
  EXPECT_EQ(std::u16string(wide, 4), u"fou.");

  char narrow[4] = {'.', '.', '.', '.'};
  EXPECT_EQ(wcstombs(nullptr, u"four", 0), 4U);
  EXPECT_EQ(wcstombs(narrow, u"\x0416\x00E9", 4), 2U);
  EXPECT_EQ(std::string(narrow, 4), std::string("?\xE9\0.", 4));
  EXPECT_EQ(wcstombs(narrow, u"four5", 3), 3U);
  EXPECT_EQ(std::string(narrow, 4), "fou.");
}

TEST(RuntimeText, ComparesWithoutCase) {
  EXPECT_EQ(_stricmp("KeyPad", "kEYpAD"), 0);
  EXPECT_NE(_stricmp("\xC9", "\xE9"), 0);
  EXPECT_LT(_stricmp("ab", "ABC"), 0);
  EXPECT_GT(_stricmp("z", "_"), 0);
  EXPECT_EQ(_strnicmp("ABx", "aby", 2), 0);
  EXPECT_GT(_strnicmp("ABy", "abx", 3), 0);
  EXPECT_EQ(_strnicmp("a", "b", 0), 0);
  EXPECT_EQ(_strnicmp("ab", "AB", 99), 0);
  EXPECT_EQ(_wcsicmp(u"\x00C9t\x00D7", u"\x00E9T\x00D7"), 0);
  EXPECT_NE(_wcsicmp(u"\x00D7", u"\x00F7"), 0);
  EXPECT_EQ(_wcsnicmp(u"ABx", u"aby", 2), 0);
  EXPECT_LT(_wcsnicmp(u"ABx", u"aby", 3), 0);
}

}  // namespace
