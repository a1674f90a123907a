#include "tools/palsim/jobs.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstring>
#include <exception>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

using Clock = std::chrono::steady_clock;

// The exit status of a job that threw; what it threw stands in the pipe.
constexpr int kThrew = 3;

struct Worker {
  std::size_t index = 0;
  pid_t process = 0;
  int pipe = -1;  // what the job answers
  Clock::time_point start;
  std::string answer;
};

// Two numbers with a mark between them.
template <class Number>
std::optional<std::pair<Number, Number>> ParsePair(std::string_view text, char mark) {
  std::pair<Number, Number> pair;
  const char* const end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, pair.first);
  if (first.ec != std::errc() || first.ptr == end || *first.ptr != mark) return std::nullopt;
  const auto second = std::from_chars(first.ptr + 1, end, pair.second);
  if (second.ec != std::errc() || second.ptr != end) return std::nullopt;
  return pair;
}

void WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(file, bytes.data(), bytes.size());
    if (count < 0 && errno != EINTR) return;  // nobody reads it any more
    bytes.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
  }
}

// The child process. It ends without what the parent would do at its own end, and with the parent.
[[noreturn]] void Work(int pipe, pid_t parent, unsigned most_seconds, std::size_t index,
                       const std::function<std::string(std::size_t)>& work) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(kThrew);
  alarm(most_seconds);
  int status = 0;
  std::string answer;
  try {
    answer = work(index);
  } catch (const std::exception& error) {
    answer = error.what();
    status = kThrew;
  }
  WriteAll(pipe, answer);
  _exit(status);
}

[[noreturn]] void FailToStart() {
  throw std::system_error(errno, std::generic_category(), "no process for a job");
}

Worker Start(const JobPlan& plan, std::size_t index,
             const std::function<std::string(std::size_t)>& work) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) FailToStart();
  Worker worker{.index = index, .pipe = ends[0], .start = Clock::now(), .answer = {}};
  const pid_t parent = getpid();
  worker.process = fork();
  if (worker.process < 0) FailToStart();
  if (worker.process == 0) Work(ends[1], parent, plan.most_seconds, index, work);
  close(ends[1]);
  return worker;
}

// False at the end of what it answers.
bool ReadFrom(Worker& worker) {
  std::array<char, 65536> block{};
  const ssize_t count = read(worker.pipe, block.data(), block.size());
  if (count > 0) worker.answer.append(block.data(), static_cast<std::size_t>(count));
  return count > 0 || (count < 0 && errno == EINTR);
}

std::string HowItEnded(int status, unsigned most_seconds) {
  if (WIFEXITED(status)) return fmt::format("its process ended with {}", WEXITSTATUS(status));
  if (WTERMSIG(status) == SIGALRM) return fmt::format("it took longer than {} s", most_seconds);
  return fmt::format("its process crashed: {}", strsignal(WTERMSIG(status)));
}

JobEnd EndOf(Worker& worker, unsigned most_seconds) {
  int status = 0;
  close(worker.pipe);
  while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
  }
  const double seconds = std::chrono::duration<double>(Clock::now() - worker.start).count();
  if (status == 0) return {.answer = std::move(worker.answer), .error = {}, .seconds = seconds};
  const bool threw = WIFEXITED(status) && WEXITSTATUS(status) == kThrew;
  return {.answer = {},
          .error = threw ? std::move(worker.answer) : HowItEnded(status, most_seconds),
          .seconds = seconds};
}

// Of each worker, and behind them of `stop`.
void WaitForAny(const std::vector<Worker>& workers, int stop, std::vector<pollfd>& polled) {
  polled.clear();
  for (const Worker& worker : workers) polled.push_back({worker.pipe, POLLIN, 0});
  polled.push_back({stop, POLLIN, 0});
  while (poll(polled.data(), polled.size(), -1) < 0 && errno == EINTR) {
  }
}

void KillAll(std::vector<Worker>& workers) {
  for (Worker& worker : workers) {
    kill(worker.process, SIGKILL);
    static_cast<void>(EndOf(worker, 0));
  }
}

}  // namespace

Shard ParseShard(std::string_view text) {
  const auto pair = ParsePair<std::size_t>(text, '/');
  if (!pair || pair->first < 1 || pair->first > pair->second) {
    throw UsageError(
        fmt::format("'{}' is no shard; write I/N, from 1/N to N/N, such as 2/3", text));
  }
  return {.number = pair->first, .count = pair->second};
}

SeedRange ParseSeeds(std::string_view text) {
  const std::string one = fmt::format("{}-{}", text, text);
  const bool is_one = text.find('-') == std::string_view::npos;
  const auto pair = ParsePair<std::uint32_t>(is_one ? one : text, '-');
  if (!pair || pair->first > pair->second) {
    throw UsageError(fmt::format("'{}' are no seeds; write A-B or a number, such as 1-20", text));
  }
  return {.first = pair->first, .last = pair->second};
}

unsigned ProcessorCount() {
  return std::max(1U, std::thread::hardware_concurrency());
}

bool RunJobs(const JobPlan& plan, const std::function<std::optional<std::size_t>()>& next,
             const std::function<std::string(std::size_t)>& work,
             const std::function<void(std::size_t, const JobEnd&)>& on_end) {
  std::vector<Worker> workers;
  std::vector<pollfd> polled;
  for (;;) {
    while (workers.size() < plan.at_once) {
      const std::optional<std::size_t> index = next();
      if (!index) break;
      workers.push_back(Start(plan, *index, work));
    }
    if (workers.empty()) return true;
    WaitForAny(workers, plan.stop, polled);
    if (polled.back().revents != 0) {
      KillAll(workers);
      return false;
    }
    for (std::size_t at = workers.size(); at-- > 0;) {
      Worker& worker = workers[at];
      if (polled[at].revents == 0 || ReadFrom(worker)) continue;
      on_end(worker.index, EndOf(worker, plan.most_seconds));
      workers.erase(workers.begin() + static_cast<std::ptrdiff_t>(at));
    }
  }
}

void RunJobs(const JobPlan& plan, const std::function<std::string(std::size_t)>& work,
             const std::function<void(std::size_t, const JobEnd&)>& on_end) {
  std::size_t begun = 0;
  const auto next = [&]() -> std::optional<std::size_t> {
    if (begun == plan.count) return std::nullopt;
    return begun++;
  };
  RunJobs(plan, next, work, on_end);
}

}  // namespace palsim
