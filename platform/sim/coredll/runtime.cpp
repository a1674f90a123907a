// The C runtime functions of the platform that the host does not have, or has for a wider wchar_t.
#include <algorithm>
#include <cstdint>
#include <string>

#include "platform/sim/text.h"
#include "platform/wince.h"

namespace {

// The narrow functions fold the letters of ASCII, the wide functions those of Latin-1 too.
int Fold(char unit) {
  const auto byte = static_cast<unsigned char>(unit);
  return byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte;
}
int Fold(WCHAR unit) {
  return sim::FoldCase(unit);
}

template <typename Unit>
int CompareNoCase(const Unit* left, const Unit* right, size_t count) {
  for (; count != 0; --count, ++left, ++right) {
    const int difference = Fold(*left) - Fold(*right);
    if (difference != 0 || *left == 0) return difference;
  }
  return 0;
}

constexpr auto kConversionFailed = static_cast<size_t>(-1);

// The common part of mbstowcs and wcstombs. It writes up to `count` units, and the terminator if
// there is room for it. Without a destination it only gives the length.
template <typename To, typename From, typename Convert>
size_t ConvertText(To* to, const From* from, size_t count, Convert convert) {
  if (from == nullptr) return kConversionFailed;
  size_t length = 0;
  while (from[length] != 0 && (to == nullptr || length < count)) ++length;
  if (to == nullptr) return length;
  std::transform(from, from + length, to, convert);
  if (length < count) to[length] = 0;
  return length;
}

}  // namespace

int _stricmp(const char* left, const char* right) {
  return CompareNoCase(left, right, SIZE_MAX);
}

int _strnicmp(const char* left, const char* right, size_t count) {
  return CompareNoCase(left, right, count);
}

int _wcsicmp(const WCHAR* left, const WCHAR* right) {
  return CompareNoCase(left, right, SIZE_MAX);
}

int _wcsnicmp(const WCHAR* left, const WCHAR* right, size_t count) {
  return CompareNoCase(left, right, count);
}

size_t wcslen(const WCHAR* text) {
  return std::char_traits<WCHAR>::length(text);
}

size_t mbstowcs(WCHAR* wide, const char* narrow, size_t count) {
  return ConvertText(wide, narrow, count,
                     [](char unit) { return WCHAR{static_cast<unsigned char>(unit)}; });
}

// A unit that the code page does not have becomes '?', and the conversion goes on.
size_t wcstombs(char* narrow, const WCHAR* wide, size_t count) {
  return ConvertText(narrow, wide, count,
                     [](WCHAR unit) { return unit > 0xFF ? '?' : static_cast<char>(unit); });
}
