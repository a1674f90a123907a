// What the tools read and write for a person: files, pipes, and "-" for the standard streams.
#ifndef TOOLS_STREAMS_H_
#define TOOLS_STREAMS_H_

#include <fmt/format.h>

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace tools {

inline constexpr std::string_view kStandardStream = "-";

// The content of a file, of what a link leads to, or of a pipe up to its end; "-" is standard
// input. Throws sim::DeviceFolderError, with the cause, also for more than 64 MB.
[[nodiscard]] std::string ReadInput(const std::string& file);
// What to call it in a message.
[[nodiscard]] std::string InputName(const std::string& file);

// Replaces a file, or what a link leads to, as a whole or not at all; writes into a pipe or a
// device; "-" is standard output. Throws sim::DeviceFolderError with the cause.
void WriteOutput(const std::string& file, std::string_view bytes);
// The same in blocks, for what memory has no room for: `fill` gives them one after the other.
using WriteBlock = std::function<void(std::string_view bytes)>;
void WriteOutputInBlocks(const std::string& file,
                         const std::function<void(const WriteBlock& write)>& fill);

// A text for the terminal: what would control it stands as \x1B; lines stay lines.
[[nodiscard]] std::string Printable(std::string_view text);

// Prints a message to standard error, as Printable. Where that is closed, there is nobody to tell.
template <typename... Arguments>
void PrintError(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  const std::string text = fmt::format(format, std::forward<Arguments>(arguments)...);
  std::fputs(Printable(text).c_str(), stderr);
}

// Prints to standard output at once. An error is kept for CheckedOutput.
void PrintAtOnce(std::string_view text);

// Does a tool's work and gives its exit status. A success becomes 1, after a message with the
// cause, where standard output did not take all. Where the reader has closed the pipe there is no
// message.
[[nodiscard]] int CheckedOutput(const char* tool, const std::function<int()>& work);

}  // namespace tools

#endif  // TOOLS_STREAMS_H_
