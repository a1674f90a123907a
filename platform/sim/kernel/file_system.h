// The one file system of the simulated device: folders and files in memory, no locks, no handles.
#ifndef PLATFORM_SIM_KERNEL_FILE_SYSTEM_H_
#define PLATFORM_SIM_KERNEL_FILE_SYSTEM_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/kernel/named_list.h"

namespace sim {

struct FileNode {
  std::string name;  // in its first spelling, UTF-8
  bool is_folder = false;
  std::vector<std::uint8_t> data;
  NamedList<char, std::shared_ptr<FileNode>> children;
  // The open handles, for the sharing rules: how many read or write, and how many let others read
  // or write.
  int readers = 0;
  int writers = 0;
  int openers = 0;
  int read_sharers = 0;
  int write_sharers = 0;
};

// Paths begin at the root and use backslashes ("\ConfigStore\dcecfg"). A leading backslash may be
// missing, and repeated ones are skipped. Names are compared without regard to case. A name may not
// hold control characters or one of /:*?"<>|, and may not be "." or "..". A path has at most 259
// units.
class FileSystem {
 public:
  FileSystem();

  [[nodiscard]] static bool IsPathAllowed(std::string_view path);

  [[nodiscard]] const std::shared_ptr<FileNode>& root() const { return root_; }
  [[nodiscard]] std::shared_ptr<FileNode> Find(std::string_view path) const;
  // Finds the file, or makes an empty one. nullptr: its folder is missing, it is a folder, or the
  // path is not allowed.
  std::shared_ptr<FileNode> CreateFile(std::string_view path);
  // Finds or makes the folder and those above it. nullptr: a name in the path is that of a file, or
  // the path is not allowed.
  std::shared_ptr<FileNode> CreateFolder(std::string_view path);
  // Removes a file, or a folder with its content. False where there is neither, and for the root.
  bool Remove(std::string_view path);

  // For tests and tools. Write makes the folders too, and throws std::invalid_argument for a path
  // that no file can have.
  void Write(std::string_view path, std::vector<std::uint8_t> data);
  void Write(std::string_view path, std::string_view text);
  [[nodiscard]] const std::vector<std::uint8_t>* Read(std::string_view path) const;
  // Copies all folders and files of another file system. Nobody may have a file open.
  void CopyFrom(const FileSystem& other);

 private:
  std::shared_ptr<FileNode> root_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_FILE_SYSTEM_H_
