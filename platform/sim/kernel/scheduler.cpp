#include "platform/sim/kernel/scheduler.h"

namespace sim {

void Scheduler::Add(Strand& strand) {
  strand.state = Strand::State::kReady;
  ready_.push_back(&strand);
  Dispatch();
}

void Scheduler::AwaitTurn(Lock& lock, Strand& strand) {
  strand.turn.wait(lock, [&] { return strand.state == Strand::State::kRunning; });
}

void Scheduler::End(Strand& strand) {
  strand.state = Strand::State::kEnded;
  --running_;
  Dispatch();
}

Wake Scheduler::Wait(Lock& lock, Strand& strand, std::optional<std::uint64_t> timeout_ms) {
  strand.state = Strand::State::kWaiting;
  if (timeout_ms) {
    strand.deadline = {now_ms_ + *timeout_ms, order_++};
    deadlines_.emplace(*strand.deadline, &strand);
  }
  --running_;
  Dispatch();
  AwaitTurn(lock, strand);
  return strand.reason;
}

void Scheduler::WakeUp(Strand& strand, Wake reason) {
  if (strand.state != Strand::State::kWaiting) return;
  MakeReady(strand, reason);
  Dispatch();
}

void Scheduler::Yield(Lock& lock, Strand& strand) {
  if (ready_.empty()) return;
  strand.state = Strand::State::kReady;
  ready_.push_back(&strand);
  --running_;
  Dispatch();
  AwaitTurn(lock, strand);
}

void Scheduler::MaybeYield(Lock& lock, Strand& strand) {
  if (random_ && !parallel_ && (*random_)() % 2 == 0) Yield(lock, strand);
}

void Scheduler::AwaitIdle(Lock& lock) {
  driver_awaits_idle_ = true;
  Wait(lock, driver_, std::nullopt);
  driver_awaits_idle_ = false;
}

void Scheduler::MakeReady(Strand& strand, Wake reason) {
  if (strand.deadline) deadlines_.erase(*strand.deadline);
  strand.deadline.reset();
  strand.reason = reason;
  strand.state = Strand::State::kReady;
  ready_.push_back(&strand);
}

Strand* Scheduler::TakeReady() {
  if (ready_.empty()) return nullptr;
  const std::size_t index = random_ ? (*random_)() % ready_.size() : 0;
  Strand* strand = ready_[index];
  ready_.erase(ready_.begin() + static_cast<std::ptrdiff_t>(index));
  return strand;
}

void Scheduler::Dispatch() {
  while (parallel_ || running_ == 0) {
    Strand* strand = TakeReady();
    if (strand != nullptr) {
      strand->state = Strand::State::kRunning;
      ++running_;
      strand->turn.notify_one();
      continue;
    }
    if (running_ > 0) return;
    // The driver waits too: otherwise it would be running. Without a deadline only it can go on.
    if (!JumpToNextDeadline()) {
      MakeReady(driver_, driver_awaits_idle_ ? Wake::kSignal : Wake::kDeadlock);
    }
  }
}

bool Scheduler::JumpToNextDeadline() {
  if (deadlines_.empty()) return false;
  const std::uint64_t next = deadlines_.begin()->first.first;
  if (next > now_ms_) {
    if (on_clock_) on_clock_(next - now_ms_);
    now_ms_ = next;
  }
  while (!deadlines_.empty() && deadlines_.begin()->first.first <= now_ms_) {
    MakeReady(*deadlines_.begin()->second, Wake::kTimeout);
  }
  return true;
}

}  // namespace sim
