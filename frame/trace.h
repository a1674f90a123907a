// Trace lines. They go to the event-log library and, where asked, to the kernel's debug output.
//
// A family has one source and writes whole literals, so that a line of the log is found by
// searching:
//
//   constexpr pal::TraceSource kTrace{pal::Facility::kConfigStore};
//   kTrace.Info("Setting %d registry keys from Config Store.", count);
//   kTrace.Echoed().Error("CDCECFGParser: Config Store DCECFG too large");
//
// %ls takes UTF-16 text, %s 8-bit text, %d %u %x %X %c numbers and enumerations of at most 32 bits.
// Handles and pointers print their low 32 bits through %x. Anything else does not compile.
#ifndef FRAME_TRACE_H_
#define FRAME_TRACE_H_

#include <type_traits>

#include "frame/facility.h"
#include "frame/trace_format.h"
#include "platform/wince.h"

namespace pal {

using TraceLine = char[1024];

// The platform writes no terminator to a line that it cuts or that just fits.
inline void FormatTraceLine(TraceLine& line, const char* format, va_list arguments) {
  line[0] = '\0';
  _vsnprintf(line, sizeof(line) - 1, format, arguments);
  line[sizeof(line) - 1] = '\0';
}

// Formats a line of at most 1023 characters (a longer one is cut), hands it to "DVLLogString" of
// the event-log library, and echoes it to the debug output where `debug_echo` is not 0. Never
// fails: where the event-log library is missing, each line tries to load it once and is otherwise
// lost to the log.
//
// `category`: severity in bits 31 to 30, facility in bits 27 to 16. Returns 0.
//
// The arguments are not checked against `format` here. Families go through TraceSource.
DWORD PALTrace(DWORD debug_echo, DWORD category, const char* format, ...);

// As PALTrace, for the forwarded physical-memory services. `ignored` has no meaning: the line is
// never echoed. The event-log library is loaded once, and its entry is looked up once.
DWORD PALSysioTrace(DWORD ignored, DWORD category, const char* format, ...);

enum class Severity : DWORD { kPlain = 0, kInfo = 1, kWarning = 2, kError = 3 };

// Severity 3 gives (facility | 0xFFFFC000) << 16, the error word of a facility of any width.
constexpr DWORD TraceCategory(Facility facility, Severity severity) {
  return (static_cast<DWORD>(facility) | (static_cast<DWORD>(severity) << 14)) << 16;
}

// For the lines that give a UTF-16 text to %s, and so show its first character only. The text ends
// with two zero bytes, so that it is also a terminated 8-bit text.
inline const char* WideTextAs8Bit(const WCHAR* text) {
  return reinterpret_cast<const char*>(text);
}

// A text that may be null, for the lines of calls that show their argument before they look at it.
inline const WCHAR* ShownText(const WCHAR* text) {
  return text != nullptr ? text : TEXT("(null)");
}

class TraceSource {
 public:
  template <typename... Arguments>
  using Format = TraceFormat<std::type_identity_t<Arguments>...>;

  constexpr explicit TraceSource(Facility facility) : facility_(facility) {}

  // The same source, with its lines echoed to the debug output.
  [[nodiscard]] constexpr TraceSource Echoed() const { return {facility_, 1}; }

  // A line whose severity comes from a table.
  template <typename... Arguments>
  void Write(Severity severity, Format<Arguments...> format, Arguments... arguments) const {
    PALTrace(echo_, TraceCategory(facility_, severity), format.text(),
             VariadicTraceArgument(arguments)...);
  }
  template <typename... Arguments>
  void Plain(Format<Arguments...> format, Arguments... arguments) const {
    Write<Arguments...>(Severity::kPlain, format, arguments...);
  }
  template <typename... Arguments>
  void Info(Format<Arguments...> format, Arguments... arguments) const {
    Write<Arguments...>(Severity::kInfo, format, arguments...);
  }
  template <typename... Arguments>
  void Warning(Format<Arguments...> format, Arguments... arguments) const {
    Write<Arguments...>(Severity::kWarning, format, arguments...);
  }
  template <typename... Arguments>
  void Error(Format<Arguments...> format, Arguments... arguments) const {
    Write<Arguments...>(Severity::kError, format, arguments...);
  }

 private:
  constexpr TraceSource(Facility facility, DWORD echo) : facility_(facility), echo_(echo) {}

  Facility facility_;
  DWORD echo_ = 0;
};

// The sources of the families that write lines in several files.
inline constexpr TraceSource kDisplayTrace{Facility::kDisplay};
inline constexpr TraceSource kKeypadTrace{Facility::kKeypad};
inline constexpr TraceSource kPowerTrace{Facility::kPower};

}  // namespace pal

#endif  // FRAME_TRACE_H_
