// The host's files that hold a device: read whole, and replaced as a whole or not at all.
#ifndef PLATFORM_SIM_HOST_FILE_H_
#define PLATFORM_SIM_HOST_FILE_H_

#include <filesystem>
#include <string>
#include <string_view>

namespace sim {

// Both throw DeviceFolderError: a symbolic link, what is no file, more than 64 MB, or the host's
// error.
[[nodiscard]] std::string ReadHostFile(const std::filesystem::path& file);
// Does nothing where the file has these bytes already. Else they are written to `temporary`, which
// is in the same file system, and that is renamed.
void ReplaceHostFile(const std::filesystem::path& file, const std::filesystem::path& temporary,
                     std::string_view bytes);

}  // namespace sim

#endif  // PLATFORM_SIM_HOST_FILE_H_
