// Tools run as a person runs them.
#ifndef TESTS_SUPPORT_COMMAND_LINE_H_
#define TESTS_SUPPORT_COMMAND_LINE_H_

#include <string>

struct CommandResult {
  int status;          // exit status
  std::string output;  // of both streams
};

// Runs a tool of this build: "palsim FOLDER new". Standard input is a file, or empty.
CommandResult RunTool(const std::string& command_line, const std::string& input_file = "/dev/null");

#endif  // TESTS_SUPPORT_COMMAND_LINE_H_
