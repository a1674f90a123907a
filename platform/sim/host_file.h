// The host's files of a device folder. A file is replaced as a whole or not at all.
#ifndef PLATFORM_SIM_HOST_FILE_H_
#define PLATFORM_SIM_HOST_FILE_H_

#include <filesystem>
#include <string>
#include <string_view>

namespace sim {

// Both throw DeviceFolderError for a symbolic link, for what is not a file, for more than 64 MB,
// and for an error of the host.
[[nodiscard]] std::string ReadHostFile(const std::filesystem::path& file);
// Does nothing where the file has these bytes already. Otherwise writes them to `temporary`, which
// must be in the same file system, and renames that.
void ReplaceHostFile(const std::filesystem::path& file, const std::filesystem::path& temporary,
                     std::string_view bytes);

}  // namespace sim

#endif  // PLATFORM_SIM_HOST_FILE_H_
