#include "platform/sim/host_file.h"

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

bool HasBytes(const fs::path& file, std::string_view bytes) {
  std::error_code error;
  if (!fs::is_regular_file(fs::symlink_status(file, error))) return false;
  return fs::file_size(file, error) == bytes.size() && !error && ReadHostFile(file) == bytes;
}

}  // namespace

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

void ReplaceHostFile(const fs::path& file, const fs::path& temporary, std::string_view bytes) {
  if (HasBytes(file, bytes)) return;
  std::error_code error;
  fs::remove(temporary, error);
  std::ofstream stream(temporary, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  const bool written = !stream.fail();
  if (written) fs::rename(temporary, file, error);
  if (written && !error) return;
  std::error_code ignored;
  fs::remove(temporary, ignored);
  Fail(file, "the file cannot be written: " + (error ? error.message() : "no room or no access"));
}

}  // namespace sim
