#include "tests/support/command_line.h"

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "pal_test_XXXXXX").string();
  path_ = mkdtemp(name.data());
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::Write(const std::string& name, const std::string& content) const {
  std::ofstream(path_ / name, std::ios::binary) << content;
  return (path_ / name).string();
}

CommandResult RunTool(const std::string& command_line, const std::string& input_file) {
  FILE* pipe = popen((BINARY_DIR "/" + command_line + " 2>&1 <" + input_file).c_str(), "r");
  if (pipe == nullptr) return {-1, "popen failed"};
  std::string output;
  for (int byte = std::fgetc(pipe); byte != EOF; byte = std::fgetc(pipe)) {
    output += static_cast<char>(byte);
  }
  return {WEXITSTATUS(pclose(pipe)), output};
}
