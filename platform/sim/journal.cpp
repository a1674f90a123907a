#include "platform/sim/journal.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <utility>

#include "platform/sim/text.h"

namespace sim {
namespace {

struct EffectRow {
  Effect effect;
  std::string_view name;
};
constexpr std::array<EffectRow, 16> kEffects{{
    {Effect::kProcess, "process"},
    {Effect::kCall, "call"},
    {Effect::kRegistry, "registry"},
    {Effect::kFile, "file"},
    {Effect::kEvent, "event"},
    {Effect::kMutex, "mutex"},
    {Effect::kModule, "module"},
    {Effect::kAudio, "audio"},
    {Effect::kLed, "led"},
    {Effect::kVibration, "vibration"},
    {Effect::kDisplay, "display"},
    {Effect::kPower, "power"},
    {Effect::kDriver, "driver"},
    {Effect::kTrace, "trace"},
    {Effect::kDebug, "debug"},
    {Effect::kExpect, "expect"},
}};

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

template <typename Number>
bool TakeNumber(std::string_view& text, Number& number, int base = 10) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (error != std::errc{}) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return true;
}

bool TakeTime(std::string_view& text, std::uint64_t& time_ms) {
  std::uint64_t seconds = 0;
  std::uint64_t thousandths = 0;
  if (!TakeNumber(text, seconds) || !TakePrefix(text, ".")) return false;
  std::string_view digits = text.substr(0, 3);
  if (digits.size() < 3 || !TakeNumber(digits, thousandths) || !digits.empty()) return false;
  text.remove_prefix(3);
  if (seconds > (std::numeric_limits<std::uint64_t>::max() - thousandths) / 1000) return false;
  time_ms = seconds * 1000 + thousandths;
  return true;
}

bool TakeEffect(std::string_view& text, Effect& effect) {
  const std::string_view name = text.substr(0, text.find(' '));
  text.remove_prefix(name.size());
  const std::optional<Effect> found = EffectFromName(name);
  effect = found.value_or(Effect::kProcess);
  return found.has_value();
}

bool TakeCategory(std::string_view& text, std::uint32_t& category) {
  return TakePrefix(text, " 0x") && TakeNumber(text, category, 16);
}

bool IsControl(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

void EscapeBytes(std::string& result, std::string_view bytes) {
  for (const char byte : bytes) {
    result += fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
  }
}

}  // namespace

std::string_view EffectName(Effect effect) {
  const auto* row = std::find_if(kEffects.begin(), kEffects.end(),
                                 [effect](const EffectRow& each) { return each.effect == effect; });
  return row == kEffects.end() ? "unknown" : row->name;
}

std::optional<Effect> EffectFromName(std::string_view name) {
  const auto* row = std::find_if(kEffects.begin(), kEffects.end(),
                                 [name](const EffectRow& each) { return each.name == name; });
  if (row == kEffects.end()) return std::nullopt;
  return row->effect;
}

std::string ToLine(const JournalEntry& entry) {
  std::string line =
      fmt::format("{:6}.{:03} p{} t{} {}", entry.time_ms / 1000, entry.time_ms % 1000,
                  entry.process_id, entry.thread_id, EffectName(entry.effect));
  if (entry.effect == Effect::kTrace) line += fmt::format(" 0x{:08X}", entry.category);
  return line + ' ' + entry.text;
}

std::optional<JournalEntry> FromLine(std::string_view line) {
  JournalEntry entry;
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  const bool head = TakeTime(line, entry.time_ms) && TakePrefix(line, " p") &&
                    TakeNumber(line, entry.process_id) && TakePrefix(line, " t") &&
                    TakeNumber(line, entry.thread_id) && TakePrefix(line, " ") &&
                    TakeEffect(line, entry.effect);
  if (!head) return std::nullopt;
  if (entry.effect == Effect::kTrace && !TakeCategory(line, entry.category)) return std::nullopt;
  if (!line.empty() && !TakePrefix(line, " ")) return std::nullopt;
  entry.text = line;
  return entry;
}

void Journal::Add(JournalEntry entry) {
  if (listener_) listener_(entry);
  if (keeps_entries_) entries_.push_back(std::move(entry));
}

std::vector<std::string> Journal::Texts(std::optional<Effect> effect) const {
  std::vector<std::string> texts;
  for (const JournalEntry& entry : entries_) {
    if (!effect || entry.effect == *effect) texts.push_back(entry.text);
  }
  return texts;
}

std::string Escape(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const CodePoint next = DecodeUtf8(text);
    const std::string_view bytes = text.substr(0, next.bytes);
    if (next.value == U'\r' || next.value == U'\n') {
      result += next.value == U'\r' ? "\\r" : "\\n";
    } else if (!next.valid || IsControl(next.value)) {
      EscapeBytes(result, bytes);
    } else {
      result += bytes;
    }
    text.remove_prefix(next.bytes);
  }
  return result;
}

}  // namespace sim
