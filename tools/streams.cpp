#include "tools/streams.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include "platform/sim/device_folder.h"
#include "platform/sim/host_file.h"
#include "platform/sim/journal.h"

namespace tools {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostBytes = std::size_t{64} * 1024 * 1024;

int first_error = 0;  // of standard output

struct Close {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, Close>;

[[noreturn]] void Fail(const std::string& name, int error) {
  throw sim::DeviceFolderError(name + ": " + std::generic_category().message(error));
}

std::string ReadAll(std::FILE* file, const std::string& name) {
  std::string bytes;
  std::array<char, 65536> block{};
  while (const std::size_t count = std::fread(block.data(), 1, block.size(), file)) {
    bytes.append(block.data(), count);
    if (bytes.size() > kMostBytes) throw sim::DeviceFolderError(name + ": more than 64 MB");
  }
  if (std::ferror(file) != 0) Fail(name, errno);
  return bytes;
}

void Keep(bool succeeded) {
  if (!succeeded && first_error == 0) first_error = errno;
}

// The work's exit status. Where a print failed there is none, and the error is kept.
int StatusOf(const std::function<int()>& work) {
  try {
    return work();
  } catch (const std::system_error& error) {
    if (std::ferror(stdout) == 0) throw;
    errno = error.code().value();
    Keep(false);
    return 1;
  }
}

fs::path Target(const std::string& file) {
  std::error_code ignored;
  return fs::is_symlink(file, ignored) ? fs::weakly_canonical(file) : fs::path(file);
}

// Whether it is a file, or becomes one; not a pipe or a device.
bool IsReplaced(const fs::path& path) {
  std::error_code ignored;
  return !fs::exists(path, ignored) || fs::is_regular_file(path, ignored);
}

// A new file beside another one, with a name that nobody has.
std::string CreateBeside(const fs::path& path) {
  for (unsigned number = 1;; ++number) {
    std::string name = fmt::format("{}.writing.{}", path.string(), number);
    if (File(std::fopen(name.c_str(), "wbx")) != nullptr || errno != EEXIST) return name;
  }
}

void FillFile(const std::string& path, const std::string& name,
              const std::function<void(const WriteBlock& write)>& fill) {
  const File file(std::fopen(path.c_str(), "wb"));
  if (file == nullptr) Fail(name, errno);
  fill([&](std::string_view bytes) {
    if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) Fail(name, errno);
  });
  if (std::fflush(file.get()) != 0) Fail(name, errno);
}

}  // namespace

std::string InputName(const std::string& file) {
  return file == kStandardStream ? "standard input" : file;
}

std::string ReadInput(const std::string& file) {
  if (file == kStandardStream) return ReadAll(stdin, InputName(file));
  const File opened(std::fopen(file.c_str(), "rb"));
  if (opened == nullptr) Fail(file, errno);
  return ReadAll(opened.get(), file);
}

void WriteOutput(const std::string& file, std::string_view bytes) {
  WriteOutputInBlocks(file, [bytes](const WriteBlock& write) { write(bytes); });
}

void WriteOutputInBlocks(const std::string& file,
                         const std::function<void(const WriteBlock& write)>& fill) {
  if (file == kStandardStream) return fill(&PrintAtOnce);
  const fs::path path = Target(file);
  if (!IsReplaced(path)) return FillFile(path.string(), file, fill);
  const std::string temporary = CreateBeside(path);
  try {
    FillFile(temporary, file, fill);
    std::error_code error;
    fs::rename(temporary, path, error);
    if (error) Fail(file, error.value());
  } catch (...) {
    std::error_code ignored;
    fs::remove(temporary, ignored);
    throw;
  }
}

std::string Printable(std::string_view text) {
  std::string printable;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    printable += sim::Escape(text.substr(0, end)) + '\n';
    text.remove_prefix(end + 1);
  }
  return printable + sim::Escape(text);
}

void PrintAtOnce(std::string_view text) {
  Keep(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
  Keep(std::fflush(stdout) == 0);
}

int CheckedOutput(const char* tool, const std::function<int()>& work) {
#ifdef SIGPIPE
  // A closed pipe is an error of the writing, and not the end of work that is not saved yet.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
#endif
  const int status = StatusOf(work);
  Keep(std::fflush(stdout) == 0);
  if (first_error == 0 && std::ferror(stdout) != 0) first_error = EIO;  // of an unknown cause
  if (first_error == 0) return status;
  if (first_error != EPIPE) {
    PrintError("{}: standard output: {}\n", tool, std::generic_category().message(first_error));
  }
  return status == 0 ? 1 : status;
}

}  // namespace tools
