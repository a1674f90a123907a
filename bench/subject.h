// One build of the library in a process of a sample device of its own, to be measured beside the
// other builds.
#ifndef BENCH_SUBJECT_H_
#define BENCH_SUBJECT_H_

#include <array>
#include <string>

#include "platform/sim/device.h"
#include "platform/sim/exports.h"

namespace bench {

// The builds differ in nothing that a caller sees but their trace lines.
enum class Build {
  kLibrary,            // as it is shipped
  kWithoutTraceLines,  // the same source, and none of its lines
  kHandWritten,        // the platform's calls alone (bench/hand_written)
};
inline constexpr std::array kBuilds = {Build::kLibrary, Build::kWithoutTraceLines,
                                       Build::kHandWritten};

// "library", "untraced", "bare".
[[nodiscard]] const char* NameOf(Build build);

class Subject {
 public:
  explicit Subject(Build build);

  [[nodiscard]] sim::Device& device() { return device_; }
  [[nodiscard]] const sim::Exports& pal() const { return process_.exports(); }
  // The library's entry, as the loader calls it.
  void Attach() const { entry_(module_, 1, nullptr); }
  void Detach() const { entry_(module_, 0, nullptr); }
  // Runs something as the process's thread: exports are called in it by their addresses.
  void Run(const std::function<void()>& body) { process_.Run(body); }

 private:
  using Entry = int (*)(void* module, unsigned reason, void* reserved);

  sim::Device device_;
  sim::Process process_;
  Entry entry_;
  void* module_ = nullptr;
};

}  // namespace bench

#endif  // BENCH_SUBJECT_H_
