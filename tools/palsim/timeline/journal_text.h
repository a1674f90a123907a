// What the texts of journal lines say.
#ifndef TOOLS_PALSIM_TIMELINE_JOURNAL_TEXT_H_
#define TOOLS_PALSIM_TIMELINE_JOURNAL_TEXT_H_

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace palsim {

// A text before and from the last place where one of some words stands alone; without one the
// second is empty.
[[nodiscard]] std::pair<std::string, std::string> SplitAtWord(
    const std::string& text, std::initializer_list<std::string_view> words);

// The number, decimal or 0x, behind some words.
[[nodiscard]] std::optional<std::uint32_t> NumberAfter(std::string_view text,
                                                       std::string_view words);

// A registry line as its value alone, "Headset = 1"; any other text as it is.
[[nodiscard]] std::string ShortText(const std::string& text);

// "sound begins \Windows\a.wav 120 ms, looping"
struct SoundBeginning {
  std::string path;
  std::uint32_t length_ms = 0;
  bool looping = false;
};
[[nodiscard]] std::optional<SoundBeginning> SoundBegun(std::string_view text);

// "sound ends \Windows\a.wav", "sound stops \Windows\a.wav"
struct SoundEnding {
  std::string path;
  bool stopped = false;
};
[[nodiscard]] std::optional<SoundEnding> SoundEnded(std::string_view text);

// "good-read.scenario:7 held, seen at 300 ms: expected led 'LED 3 on'"
struct ExpectationResult {
  bool held = false;
  std::optional<std::uint32_t> seen_ms;
};
[[nodiscard]] ExpectationResult ExpectationIn(std::string_view text);

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_JOURNAL_TEXT_H_
