// The journal of the simulated device: every effect of its programs, in order.
#ifndef PLATFORM_SIM_JOURNAL_H_
#define PLATFORM_SIM_JOURNAL_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

enum class Effect : std::uint8_t {
  kProcess,    // a process starts or ends
  kCall,       // an export is called, or answers; noted by whoever calls it
  kRegistry,   // a value is written or deleted, a key is created or deleted
  kFile,       // a file is written or created
  kEvent,      // a named event is set, reset or pulsed
  kMutex,      // a named mutex is taken, released or abandoned
  kModule,     // a library is loaded, freed or not found, or does a service
  kAudio,      // volume or gain is set; a sound starts or ends
  kLed,        // an LED changes
  kVibration,  // the vibrator runs
  kDisplay,    // the display turns
  kPower,      // the power state changes, or an idle timer begins anew
  kDriver,     // a driver gets an I/O control
  kTrace,      // a line in the event log, with its category word
  kDebug,      // a line on the kernel's debug output
  kExpect,     // what was expected of the device held or failed; noted by whoever plays a scenario
};

// The word for an effect in a journal line, and back.
[[nodiscard]] std::string_view EffectName(Effect effect);
[[nodiscard]] std::optional<Effect> EffectFromName(std::string_view name);

struct JournalEntry {
  std::uint64_t time_ms = 0;     // since the device started
  std::uint32_t process_id = 0;  // 0: the device itself
  std::uint32_t thread_id = 0;
  Effect effect = Effect::kProcess;
  std::uint32_t category = 0;  // of a trace line, else 0
  std::string text;            // one line, control characters escaped
};

// "     2.000 p1 t1 registry HKEY_LOCAL_MACHINE\...": seconds, process, thread, effect, text.
[[nodiscard]] std::string ToLine(const JournalEntry& entry);
[[nodiscard]] std::optional<JournalEntry> FromLine(std::string_view line);

class Journal {
 public:
  void Add(JournalEntry entry);
  void Clear() { entries_.clear(); }
  [[nodiscard]] const std::vector<JournalEntry>& entries() const { return entries_; }
  // The texts of the entries, of one effect or of all. Tests compare these.
  [[nodiscard]] std::vector<std::string> Texts(std::optional<Effect> effect = std::nullopt) const;
  // A device that keeps no entries can run for any time: for benchmarks.
  void set_keeps_entries(bool keeps) { keeps_entries_ = keeps; }
  // Whether anybody gets to see a new entry.
  [[nodiscard]] bool is_read() const { return keeps_entries_ || listener_ != nullptr; }
  // Called with each new entry, for tools that print while a program runs.
  void set_listener(std::function<void(const JournalEntry&)> listener) {
    listener_ = std::move(listener);
  }

 private:
  std::vector<JournalEntry> entries_;
  bool keeps_entries_ = true;
  std::function<void(const JournalEntry&)> listener_;
};

// Makes one readable line of any bytes: control characters become "\r", "\n" or "\x1B". Backslashes
// stay as they are, so that registry paths stay readable.
[[nodiscard]] std::string Escape(std::string_view text);

}  // namespace sim

#endif  // PLATFORM_SIM_JOURNAL_H_
