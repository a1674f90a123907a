#include "tests/support/command_line.h"

#include <sys/wait.h>

#include <cstdio>

CommandResult RunTool(const std::string& command_line, const std::string& input_file) {
  FILE* pipe = popen((BINARY_DIR "/" + command_line + " 2>&1 <" + input_file).c_str(), "r");
  if (pipe == nullptr) return {-1, "popen failed"};
  std::string output;
  for (int byte = std::fgetc(pipe); byte != EOF; byte = std::fgetc(pipe)) {
    output += static_cast<char>(byte);
  }
  return {WEXITSTATUS(pclose(pipe)), output};
}
