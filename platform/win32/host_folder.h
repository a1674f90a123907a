// The folder on the PC that this library lies in: what the device has as files stands below it.
#ifndef PLATFORM_WIN32_HOST_FOLDER_H_
#define PLATFORM_WIN32_HOST_FOLDER_H_

#include <string>
#include <string_view>

namespace win32 {

// A file of the folder, by its path from there: L"device\\device.toml".
[[nodiscard]] std::wstring BesideLibrary(std::wstring_view path);

// Where a path of the device stands on the PC: "\Windows\x" is device\files\Windows\x in the
// folder. A path with a drive letter is the PC's own and stays as it is.
[[nodiscard]] std::wstring HostPath(std::wstring_view path);

// Adds a line to a text file of the folder. Lines of several processes do not mix. A line that
// cannot be written is lost: there is nobody to tell.
void AppendLine(std::wstring_view file, std::string_view line);

}  // namespace win32

#endif  // PLATFORM_WIN32_HOST_FOLDER_H_
