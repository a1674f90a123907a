// Many jobs at once, each in a process of its own: one that crashes takes no other with it. And how
// jobs are shared out among machines.
#ifndef TOOLS_PALSIM_JOBS_H_
#define TOOLS_PALSIM_JOBS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace palsim {

// The part of all jobs that one machine does: of "2/3" the second, the fifth and so on.
struct Shard {
  std::size_t number = 1;  // from 1, as test runners count
  std::size_t count = 1;
  [[nodiscard]] bool Has(std::size_t index) const { return index % count == number - 1; }
};
// Of "I/N". Throws UsageError.
[[nodiscard]] Shard ParseShard(std::string_view text);

struct SeedRange {
  std::uint32_t first = 0;
  std::uint32_t last = 0;  // it belongs to the range
};
// Of "A-B", or of one number. Throws UsageError.
[[nodiscard]] SeedRange ParseSeeds(std::string_view text);

// How many jobs the machine runs at once: one for each of its processors.
[[nodiscard]] unsigned ProcessorCount();

struct JobPlan {
  std::size_t count = 0;
  unsigned at_once = 1;
  unsigned most_seconds = 60;  // a job that takes longer is ended
  int stop = -1;               // a descriptor: as soon as it can be read, all jobs are ended
};

struct JobEnd {
  std::string answer;
  std::string error;  // why there is no answer: what the job threw, or how its process ended
  double seconds = 0;
};

// Runs `work` for the numbers from 0 to count - 1, each in a child process, and tells `on_end` of
// each as it ends, in any order. The children end with the caller, which has no other threads.
// Throws std::system_error where the host gives no process.
void RunJobs(const JobPlan& plan, const std::function<std::string(std::size_t index)>& work,
             const std::function<void(std::size_t index, const JobEnd& end)>& on_end);

// The same for the numbers that `next` returns. It is called whenever there is room for another
// job, and returns nothing if no job can begin now. Returns false if `stop` has ended the jobs.
bool RunJobs(const JobPlan& plan, const std::function<std::optional<std::size_t>()>& next,
             const std::function<std::string(std::size_t index)>& work,
             const std::function<void(std::size_t index, const JobEnd& end)>& on_end);

}  // namespace palsim

#endif  // TOOLS_PALSIM_JOBS_H_
