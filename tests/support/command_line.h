// Tools run as a person runs them.
#ifndef TESTS_SUPPORT_COMMAND_LINE_H_
#define TESTS_SUPPORT_COMMAND_LINE_H_

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

struct CommandResult {
  int status;          // exit status
  std::string output;  // of both streams
};

// Runs a tool of this build: "palsim FOLDER new". Standard input is a file, or empty.
CommandResult RunTool(const std::string& command_line, const std::string& input_file = "/dev/null");

#endif  // TESTS_SUPPORT_COMMAND_LINE_H_
