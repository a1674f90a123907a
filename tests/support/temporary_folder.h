// A place for files that a test makes.
#ifndef TESTS_SUPPORT_TEMPORARY_FOLDER_H_
#define TESTS_SUPPORT_TEMPORARY_FOLDER_H_

#include <filesystem>
#include <string>

// A folder of the test's own; gone with it.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  // Writes a file into it and gives its path.
  std::string Write(const std::string& name, const std::string& content) const;

 private:
  std::filesystem::path path_;
};

#endif  // TESTS_SUPPORT_TEMPORARY_FOLDER_H_
