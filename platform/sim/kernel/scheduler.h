// Whose turn it is, and what time: the discrete-event clock of the simulated device.
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
  kSignal,    // what it waited for has come
  kTimeout,   // its deadline has passed
  kKilled,    // its process was ended
  kDeadlock,  // nothing on the device can run any more
};

// One host thread as the device schedules it. All members belong to the scheduler's lock.
struct Strand {
  enum class State : std::uint8_t { kReady, kRunning, kWaiting, kEnded };

  State state = State::kReady;
  Wake reason = Wake::kSignal;
  std::optional<std::pair<std::uint64_t, std::uint64_t>> deadline;  // time, and order among equals
  std::condition_variable turn;
};

// Every member function wants the device's lock held; those that block release it meanwhile.
class Scheduler {
 public:
  using Lock = std::unique_lock<std::mutex>;

  // The driver's strand runs from the start and is woken when nothing else can go on.
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

  // Gives the turn up until the strand is woken or the time has passed (nullopt: for ever).
  Wake Wait(Lock& lock, Strand& strand, std::optional<std::uint64_t> timeout_ms);
  // Lets a waiting strand go on; does nothing to one that does not wait.
  void WakeUp(Strand& strand, Wake reason);
  // Goes behind those that are ready.
  void Yield(Lock& lock, Strand& strand);
  // At a platform call: yields now and then where turns are shuffled.
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
