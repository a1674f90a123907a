// A change of a device's folder that is there as a whole or not at all, whatever ends the process.
#ifndef PLATFORM_SIM_FOLDER_CHANGE_H_
#define PLATFORM_SIM_FOLDER_CHANGE_H_

#include <filesystem>
#include <string_view>
#include <utility>

namespace sim {

// Where a change is written. A process that is ended can leave it.
constexpr const char* kSaving = ".palsim-saving";

// What is to change is written into kSaving. The new name ".palsim-saved" makes the change: from
// then on the files are moved to their places, by this process or by the next that finds them.
// One process at a time may have one (host_disk.h). All calls throw DeviceFolderError.
class FolderChange {
 public:
  explicit FolderChange(std::filesystem::path folder) : folder_(std::move(folder)) {}
  ~FolderChange();  // what was not committed is gone
  FolderChange(const FolderChange&) = delete;
  FolderChange& operator=(const FolderChange&) = delete;

  [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

  // Names are relative to the folder, and each is put or removed but once. A file takes the place
  // of whatever has its name; a file with these bytes, and a folder that is there, stay as they
  // are.
  void Put(const std::filesystem::path& name, std::string_view bytes);
  void PutFolder(const std::filesystem::path& name);
  void Remove(const std::filesystem::path& name);
  [[nodiscard]] bool empty() const { return !begun_; }

  // Returns when the change would be there after a power failure.
  void Commit();

 private:
  // Where a file stands until the change is made, with its folders.
  std::filesystem::path Prepare(const char* part, const std::filesystem::path& name);

  std::filesystem::path folder_;
  bool begun_ = false;
};

// A change that was committed, and whose process ended before all files were in their places.
[[nodiscard]] bool HasUnfinishedChange(const std::filesystem::path& folder);
void FinishChange(const std::filesystem::path& folder);

}  // namespace sim

#endif  // PLATFORM_SIM_FOLDER_CHANGE_H_
