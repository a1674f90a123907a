// The words of the text form and the bytes they stand for, shared by build and dump.
#ifndef TOOLS_DCECFG_SYNTAX_H_
#define TOOLS_DCECFG_SYNTAX_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "configstore/dcecfg_format.h"

namespace dcecfg {

// What a statement stands in.
enum class Context : std::uint8_t { kFile, kDirect, kDscp, kPorts, kDevices, kBlock };

// The statements that a context takes besides "bytes" and "truncated", in the order of Context.
constexpr std::array<std::string_view, 6> kExpected = {
    "direct { or dscp {",      "string, dword, binary, indexed or }",
    "ports {, devices { or }", "port NUMBER { or }",
    "device NAME { or }",      "DevConfig, CntrlCmdConfig or }",
};

// A statement that ends in { and holds others: in the file its first byte (or an index from 0 up,
// where there is none), what it holds, and its last byte.
struct Section {
  Context inside;
  std::string_view word;
  std::optional<BYTE> first;
  Context holds;
  BYTE last;
};

constexpr std::array kSections = std::to_array<Section>({
    {Context::kFile, "direct", pal::dcecfg::kDirectSection, Context::kDirect,
     pal::dcecfg::kEndOfSection},
    {Context::kFile, "dscp", pal::dcecfg::kDscpSection, Context::kDscp, pal::dcecfg::kEndOfSection},
    {Context::kDscp, "ports", BYTE{0}, Context::kPorts, pal::dcecfg::kEndOfSubsection},
    {Context::kDscp, "devices", BYTE{1}, Context::kDevices, pal::dcecfg::kEndOfSubsection},
    {Context::kPorts, "port", std::nullopt, Context::kBlock, pal::dcecfg::kEndOfBlock},
    {Context::kDevices, "device", std::nullopt, Context::kBlock, pal::dcecfg::kEndOfBlock},
});

struct Word {
  std::string_view word;
  BYTE byte;
};

constexpr std::array kLiteralKeys = std::to_array<Word>({
    {"string", pal::dcecfg::kStringKey},
    {"dword", pal::dcecfg::kDwordKey},
    {"binary", pal::dcecfg::kBinaryKey},
});
constexpr std::array kFrames = std::to_array<Word>({{"DevConfig", 'A'}, {"CntrlCmdConfig", 'B'}});

constexpr BYTE kNamedFormat = 2;
constexpr std::array kFormats =
    std::to_array<Word>({{"one-byte", 0}, {"two-byte", 1}, {"string", kNamedFormat}});

template <std::size_t kSize>
constexpr const Word* FindWord(const std::array<Word, kSize>& words, std::string_view word) {
  for (const Word& row : words) {
    if (row.word == word) return &row;
  }
  return nullptr;
}

template <std::size_t kSize>
constexpr const Word* FindByte(const std::array<Word, kSize>& words, BYTE byte) {
  for (const Word& row : words) {
    if (row.byte == byte) return &row;
  }
  return nullptr;
}

}  // namespace dcecfg

#endif  // TOOLS_DCECFG_SYNTAX_H_
