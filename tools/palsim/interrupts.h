// Signals that end a shell or a search, or clear a shell's line: taken where it waits and nowhere
// else, so that what is under way is done and saved.
#ifndef TOOLS_PALSIM_INTERRUPTS_H_
#define TOOLS_PALSIM_INTERRUPTS_H_

namespace palsim {

class Interrupts {
 public:
  // Holds back SIGINT, SIGTERM and SIGHUP from now on, and in threads that start from now on. One
  // that is ignored stays so.
  Interrupts();
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  // Can be read when a signal has come.
  [[nodiscard]] int descriptor() const { return signals_; }

  // Waits. Returns 0 when standard input can be read or has ended, or else the signal that came. A
  // closed terminal counts as SIGHUP.
  [[nodiscard]] int WaitForInput() const { return Poll(-1); }
  // The same without waiting; 0 also where there is nothing yet.
  [[nodiscard]] int Pending() const { return Poll(0); }

 private:
  [[nodiscard]] int Poll(int longest_ms) const;

  bool is_terminal_;
  int signals_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_INTERRUPTS_H_
