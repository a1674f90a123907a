#include "platform/sim/text.h"

#include <algorithm>
#include <array>

namespace sim {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

unsigned char ByteAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]);
}

// The form of a sequence by its first byte.
struct SequenceForm {
  unsigned char lead_mask;
  unsigned char lead_bits;
  std::size_t bytes;
  char32_t smallest;  // anything below is an overlong form
};
constexpr std::array<SequenceForm, 4> kForms{{
    {0x80, 0x00, 1, 0},
    {0xE0, 0xC0, 2, 0x80},
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000},
}};

char Trail(char32_t code, unsigned shift) {
  return static_cast<char>(0x80 | ((code >> shift) & 0x3F));
}

void AppendUtf8(std::string& text, char32_t code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += {static_cast<char>(0xC0 | (code >> 6)), Trail(code, 0)};
  } else if (code < 0x10000) {
    text += {static_cast<char>(0xE0 | (code >> 12)), Trail(code, 6), Trail(code, 0)};
  } else {
    text +=
        {static_cast<char>(0xF0 | (code >> 18)), Trail(code, 12), Trail(code, 6), Trail(code, 0)};
  }
}

void AppendUtf16(std::u16string& text, char32_t code) {
  if (code < 0x10000) {
    text += static_cast<char16_t>(code);
    return;
  }
  text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
  text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
}

std::u16string UnitsOf(std::string_view bytes, bool big_endian) {
  std::u16string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const unsigned char low = ByteAt(bytes, i + (big_endian ? 1 : 0));
    const unsigned char high = ByteAt(bytes, i + (big_endian ? 0 : 1));
    text += static_cast<char16_t>(low | (high << 8));
  }
  return text;
}

// In UTF-8 the Latin-1 letters follow a byte 0xC3, with the same distance between the cases.
unsigned char FoldByte(unsigned char previous, unsigned char byte) {
  if (previous == 0xC3 && byte >= 0x80 && byte <= 0x9E && byte != 0x97) {
    return static_cast<unsigned char>(byte + 0x20);
  }
  return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte + 0x20) : byte;
}

// FNV-1a, of units.
std::size_t MixedHash(std::size_t hash, std::uint32_t unit) {
  constexpr std::uint64_t kPrime = 0x100000001B3;
  return static_cast<std::size_t>((std::uint64_t{hash} ^ (unit + 1)) * kPrime);
}

}  // namespace

CodePoint DecodeUtf8(std::string_view text) {
  const CodePoint malformed{kReplacement, 1, false};
  const unsigned char lead = ByteAt(text, 0);
  const auto* form = std::find_if(kForms.begin(), kForms.end(), [lead](const SequenceForm& row) {
    return (lead & row.lead_mask) == row.lead_bits;
  });
  if (form == kForms.end() || text.size() < form->bytes) return malformed;
  char32_t code = lead & static_cast<unsigned char>(~form->lead_mask);
  for (std::size_t i = 1; i < form->bytes; ++i) {
    if ((ByteAt(text, i) & 0xC0) != 0x80) return malformed;
    code = (code << 6) | (ByteAt(text, i) & 0x3F);
  }
  const bool surrogate = IsHighSurrogate(code) || IsLowSurrogate(code);
  if (code < form->smallest || code > 0x10FFFF || surrogate) return malformed;
  return {code, form->bytes, true};
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const CodePoint next = DecodeUtf8(text);
    if (!next.valid) return false;
    text.remove_prefix(next.bytes);
  }
  return true;
}

std::string ToUtf8(std::u16string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char32_t unit = text[i];
    const bool pair = IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]);
    if (pair) {
      AppendUtf8(result, 0x10000 + ((unit - 0xD800) << 10) + (text[++i] - 0xDC00U));
    } else {
      AppendUtf8(result, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacement : unit);
    }
  }
  return result;
}

std::u16string ToUtf16(std::string_view text) {
  std::u16string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const CodePoint next = DecodeUtf8(text);
    AppendUtf16(result, next.value);
    text.remove_prefix(next.bytes);
  }
  return result;
}

std::string DecodeTextFile(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return ToUtf8(UnitsOf(bytes.substr(2), false));
  if (bytes.starts_with("\xFE\xFF")) return ToUtf8(UnitsOf(bytes.substr(2), true));
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  return std::string(bytes);
}

char16_t FoldCase(char16_t unit) {
  const bool ascii = unit >= u'A' && unit <= u'Z';
  const bool latin = unit >= 0xC0 && unit <= 0xDE && unit != 0xD7;
  return ascii || latin ? static_cast<char16_t>(unit + 0x20) : unit;
}

bool EqualNoCase(std::u16string_view left, std::u16string_view right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](char16_t a, char16_t b) { return a == b || FoldCase(a) == FoldCase(b); });
}

bool EqualNoCase(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  unsigned char previous = 0;
  for (std::size_t i = 0; i < left.size(); ++i) {
    if (FoldByte(previous, ByteAt(left, i)) != FoldByte(previous, ByteAt(right, i))) return false;
    previous = ByteAt(left, i);
  }
  return true;
}

std::size_t HashNoCase(std::u16string_view name) {
  std::size_t hash = 0;
  for (const char16_t unit : name) hash = MixedHash(hash, FoldCase(unit));
  return hash;
}

std::size_t HashNoCase(std::string_view name) {
  std::size_t hash = 0;
  unsigned char previous = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    hash = MixedHash(hash, FoldByte(previous, ByteAt(name, i)));
    previous = ByteAt(name, i);
  }
  return hash;
}

}  // namespace sim
