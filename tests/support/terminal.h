// A tool at a terminal, as a person has it before them.
#ifndef TESTS_SUPPORT_TERMINAL_H_
#define TESTS_SUPPORT_TERMINAL_H_

#include <sys/types.h>

#include <string>
#include <vector>

class Terminal {
 public:
  // Starts a tool of this build.
  explicit Terminal(std::vector<std::string> command);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void Type(const std::string& keys) const;
  // Waits until this text is on the terminal, behind what was waited for before; false where it
  // does not come.
  bool Shows(const std::string& text);
  void Signal(int signal) const;
  // Hangs up, as a window that is closed.
  void Close();
  // Waits for the tool's end: its exit status, or -1 where it does not end by itself.
  int Wait();

 private:
  // False at the end, and where nothing comes.
  bool Read();

  pid_t process_ = -1;
  int terminal_ = -1;
  std::string shown_;
  bool has_ended_ = false;
};

#endif  // TESTS_SUPPORT_TERMINAL_H_
