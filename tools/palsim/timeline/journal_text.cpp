#include "tools/palsim/timeline/journal_text.h"

#include <charconv>

namespace palsim {
namespace {

std::optional<std::string_view> Behind(std::string_view text, std::string_view words) {
  if (!text.starts_with(words)) return std::nullopt;
  return text.substr(words.size());
}

std::optional<std::uint32_t> NumberAt(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x");
  if (hexadecimal) text.remove_prefix(2);
  std::uint32_t number = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), number, hexadecimal ? 16 : 10);
  if (error != std::errc()) return std::nullopt;
  return number;
}

}  // namespace

std::pair<std::string, std::string> SplitAtWord(const std::string& text,
                                                std::initializer_list<std::string_view> words) {
  for (std::size_t blank = text.rfind(' '); blank != std::string::npos && blank > 0;
       blank = text.rfind(' ', blank - 1)) {
    const std::string_view rest = std::string_view(text).substr(blank + 1);
    for (const std::string_view word : words) {
      const std::optional<std::string_view> behind = Behind(rest, word);
      if (!behind || (!behind->empty() && behind->find_first_of(" :") != 0)) continue;
      return {text.substr(0, blank), std::string(rest)};
    }
  }
  return {text, {}};
}

std::optional<std::uint32_t> NumberAfter(std::string_view text, std::string_view words) {
  const std::size_t found = text.find(words);
  if (found == std::string_view::npos) return std::nullopt;
  return NumberAt(text.substr(found + words.size()));
}

std::string ShortText(const std::string& text) {
  const std::size_t quote = text.find(" \"");
  const std::size_t end = text.find('"', quote + 2);
  if (!text.starts_with("HKEY_") || end == std::string::npos) return text;
  const std::string name = text.substr(quote + 2, end - quote - 2);
  const std::string data = text.substr(end + 1);
  if (!data.starts_with("=dword:")) return name + data;
  const auto number = NumberAt("0x" + data.substr(7));
  return number ? name + " = " + std::to_string(*number) : name + data;
}

std::optional<SoundBeginning> SoundBegun(std::string_view text) {
  constexpr std::string_view kLooping = " ms, looping";
  std::optional<std::string_view> rest = Behind(text, "sound begins ");
  if (!rest) return std::nullopt;
  SoundBeginning sound;
  sound.looping = rest->ends_with(kLooping);
  rest = rest->substr(0, rest->rfind(" ms"));
  const std::size_t blank = rest->rfind(' ');
  if (blank == std::string_view::npos) return std::nullopt;
  sound.path = rest->substr(0, blank);
  const std::optional<std::uint32_t> length = NumberAt(rest->substr(blank + 1));
  if (!length) return std::nullopt;
  sound.length_ms = *length;
  return sound;
}

std::optional<SoundEnding> SoundEnded(std::string_view text) {
  if (const auto path = Behind(text, "sound ends ")) return SoundEnding{std::string(*path), false};
  if (const auto path = Behind(text, "sound stops ")) return SoundEnding{std::string(*path), true};
  return std::nullopt;
}

ExpectationResult ExpectationIn(std::string_view text) {
  constexpr std::string_view kSeen = ", seen at ";
  text = text.substr(0, text.find(": expected "));
  const std::optional<std::uint32_t> seen_ms = NumberAfter(text, kSeen);
  return {.held = text.substr(0, text.rfind(kSeen)).ends_with(" held"), .seen_ms = seen_ms};
}

}  // namespace palsim
