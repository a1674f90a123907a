#include "platform/sim/host_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <system_error>

#include "platform/sim/device_folder.h"

namespace sim {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestFile = std::uintmax_t{64} * 1024 * 1024;

[[noreturn]] void Fail(const fs::path& file, const std::string& what) {
  throw DeviceFolderError(file.string() + ": " + what);
}

}  // namespace

bool IsThere(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(path, ignored));
}

bool IsHostFile(const fs::path& path) {
  std::error_code ignored;
  return fs::is_regular_file(fs::symlink_status(path, ignored));
}

bool IsHostFolder(const fs::path& path) {
  std::error_code ignored;
  return fs::is_directory(fs::symlink_status(path, ignored));
}

std::vector<fs::path> HostEntries(const fs::path& folder) {
  std::vector<fs::path> entries;
  if (!IsHostFolder(folder)) return entries;
  for (const auto& entry : fs::directory_iterator(folder)) entries.push_back(entry.path());
  std::ranges::sort(entries);
  return entries;
}

std::string ReadHostFile(const fs::path& file) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(file, error);
  if (!fs::exists(status)) Fail(file, "there is no such file");
  if (fs::is_symlink(status)) Fail(file, "symbolic links are not followed");
  if (!fs::is_regular_file(status)) Fail(file, "this is not a file");
  const std::uintmax_t size = fs::file_size(file, error);
  if (error) Fail(file, error.message());
  if (size > kLargestFile) Fail(file, "the file is larger than 64 MB");

  std::string bytes(static_cast<std::size_t>(size), '\0');
  std::ifstream stream(file, std::ios::binary);
  if (!stream.read(bytes.data(), static_cast<std::streamsize>(size))) {
    Fail(file, "the file cannot be read");
  }
  return bytes;
}

bool HasBytes(const fs::path& file, std::string_view bytes) {
  if (!IsHostFile(file)) return false;
  std::error_code error;
  return fs::file_size(file, error) == bytes.size() && !error && ReadHostFile(file) == bytes;
}

void WriteHostFile(const fs::path& file, std::string_view bytes) {
  std::FILE* const stream = std::fopen(file.string().c_str(), "wb");
  int error = stream == nullptr ? errno : 0;
  if (stream != nullptr) {
    const bool taken = std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size();
    if (!taken || std::fflush(stream) != 0) error = errno;
    if (std::fclose(stream) != 0 && error == 0) error = errno;
  }
  if (error == 0) return;
  throw fs::filesystem_error("write", file, {error, std::generic_category()});
}

}  // namespace sim
