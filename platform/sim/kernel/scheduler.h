// The scheduler of the simulated device: turns of threads, and the discrete-event clock.
#ifndef PLATFORM_SIM_KERNEL_SCHEDULER_H_
#define PLATFORM_SIM_KERNEL_SCHEDULER_H_

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <utility>

namespace sim {

enum class Wake : std::uint8_t {
  kSignal,    // it has what it waited for
  kTimeout,   // its deadline has passed
  kKilled,    // its process was ended
  kDeadlock,  // nothing on the device can run any more
};

// One thread of the host as the device schedules it. The device's lock guards all members.
struct Strand {
  enum class State : std::uint8_t { kReady, kRunning, kWaiting, kEnded };

  State state = State::kReady;
  Wake reason = Wake::kSignal;
  std::optional<std::pair<std::uint64_t, std::uint64_t>> deadline;  // time, and order among equals
  std::condition_variable turn;
};

// The caller of every member function must hold the device's lock. Functions that block release it
// meanwhile.
class Scheduler {
 public:
  using Lock = std::unique_lock<std::mutex>;

  // The driver's strand runs from the start. It is woken when no other strand can go on.
  Scheduler(bool parallel, Strand& driver) : parallel_(parallel), driver_(driver) {
    driver.state = Strand::State::kRunning;
  }

  [[nodiscard]] std::uint64_t now_ms() const { return now_ms_; }
  void set_now_ms(std::uint64_t now) { now_ms_ = now; }
  void set_on_clock(std::function<void(std::uint64_t)> on_clock) {
    on_clock_ = std::move(on_clock);
  }
  void Shuffle(std::uint32_t seed) { random_.emplace(seed); }

  // A new strand waits for its first turn.
  void Add(Strand& strand);
  void AwaitTurn(Lock& lock, Strand& strand);
  void End(Strand& strand);

  // Lets others run until the strand is woken or the time has passed (nullopt: no time limit).
  Wake Wait(Lock& lock, Strand& strand, std::optional<std::uint64_t> timeout_ms);
  // Lets a waiting strand go on. Does nothing for a strand that does not wait.
  void WakeUp(Strand& strand, Wake reason);
  // Lets all strands run that are ready.
  void Yield(Lock& lock, Strand& strand);
  // Called at every platform call: yields at random where turns are shuffled.
  void MaybeYield(Lock& lock, Strand& strand);
  // Lets the driver wait until no other strand is ready or has a deadline.
  void AwaitIdle(Lock& lock);

 private:
  void MakeReady(Strand& strand, Wake reason);
  void Dispatch();
  bool JumpToNextDeadline();
  Strand* TakeReady();

  bool parallel_;
  Strand& driver_;
  bool driver_awaits_idle_ = false;
  unsigned running_ = 1;
  std::uint64_t now_ms_ = 0;
  std::uint64_t order_ = 0;
  std::deque<Strand*> ready_;
  std::map<std::pair<std::uint64_t, std::uint64_t>, Strand*> deadlines_;
  std::optional<std::mt19937> random_;
  std::function<void(std::uint64_t)> on_clock_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_SCHEDULER_H_
