// The host's files.
#ifndef PLATFORM_SIM_HOST_FILE_H_
#define PLATFORM_SIM_HOST_FILE_H_

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

// What stands at a path itself; a symbolic link is neither of the two.
[[nodiscard]] bool IsThere(const std::filesystem::path& path);
[[nodiscard]] bool IsHostFile(const std::filesystem::path& path);
[[nodiscard]] bool IsHostFolder(const std::filesystem::path& path);
// Sorted, so that each host gives the same order; none for what is no folder. Throws
// std::filesystem::filesystem_error.
[[nodiscard]] std::vector<std::filesystem::path> HostEntries(const std::filesystem::path& folder);

// Throws DeviceFolderError for a symbolic link, for what is not a file, for more than 64 MB, and
// for an error of the host.
[[nodiscard]] std::string ReadHostFile(const std::filesystem::path& file);
// Whether there is a file, and no link to one, with these bytes.
[[nodiscard]] bool HasBytes(const std::filesystem::path& file, std::string_view bytes);
// Throws std::filesystem::filesystem_error.
void WriteHostFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace sim

#endif  // PLATFORM_SIM_HOST_FILE_H_
