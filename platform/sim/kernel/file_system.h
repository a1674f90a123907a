// The one file system of the simulated device: folders and files in memory, no locks, no handles.
#ifndef PLATFORM_SIM_KERNEL_FILE_SYSTEM_H_
#define PLATFORM_SIM_KERNEL_FILE_SYSTEM_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

struct FileNode {
  std::string name;  // as it was made, UTF-8
  bool is_folder = false;
  std::vector<std::uint8_t> data;
  std::vector<std::shared_ptr<FileNode>> children;
  // Open handles, for sharing: how many read, write, and let others do so.
  int readers = 0;
  int writers = 0;
  int openers = 0;
  int read_sharers = 0;
  int write_sharers = 0;
};

// Paths begin at the root and use backslashes ("\ConfigStore\dcecfg"); a leading backslash may be
// missing, repeated ones are skipped, names are compared without regard to case. Nothing is made
// with control characters or one of /:*?"<>| in its name, with the name "." or "..", or with a path
// of more than 259 units.
class FileSystem {
 public:
  FileSystem();

  [[nodiscard]] static bool IsPathAllowed(std::string_view path);

  [[nodiscard]] const std::shared_ptr<FileNode>& root() const { return root_; }
  [[nodiscard]] std::shared_ptr<FileNode> Find(std::string_view path) const;
  // The file, made empty where it did not exist. nullptr: its folder is missing, it is a folder, or
  // the path is refused.
  std::shared_ptr<FileNode> CreateFile(std::string_view path);
  // The folder with those above it. nullptr: a file stands in the way, or the path is refused.
  std::shared_ptr<FileNode> CreateFolder(std::string_view path);
  // A file, or a folder with all that is in it; false where there is neither, or only the root.
  bool Remove(std::string_view path);

  // What tests and tools use: writes a file with its folders, or throws std::invalid_argument;
  // reads one.
  void Write(std::string_view path, std::vector<std::uint8_t> data);
  void Write(std::string_view path, std::string_view text);
  [[nodiscard]] const std::vector<std::uint8_t>* Read(std::string_view path) const;
  // Takes over all folders and files of another file system; nobody has them open.
  void CopyFrom(const FileSystem& other);

 private:
  std::shared_ptr<FileNode> root_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_FILE_SYSTEM_H_
