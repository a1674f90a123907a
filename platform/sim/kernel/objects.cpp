#include "platform/sim/kernel/objects.h"

#include <algorithm>

#include "platform/sim/kernel/process_state.h"
#include "platform/wince.h"

namespace sim {

const char* ObjectKindName(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::kKey:
      return "registry key";
    case ObjectKind::kFile:
      return "file";
    case ObjectKind::kDriver:
      return "driver";
    case ObjectKind::kMutex:
      return "mutex";
    case ObjectKind::kEvent:
      return "event";
    case ObjectKind::kThread:
      return "thread";
    case ObjectKind::kProcess:
      return "process";
    case ObjectKind::kCryptContext:
      return "cryptographic context";
    case ObjectKind::kCryptHash:
      return "hash";
  }
  return "object";
}

FileObject::FileObject(std::shared_ptr<FileNode> opened, std::string opened_path, bool may_read,
                       bool may_write, bool share_read, bool share_write)
    : Object(kKind),
      node(std::move(opened)),
      path(std::move(opened_path)),
      reads(may_read),
      writes(may_write),
      shares_read_(share_read),
      shares_write_(share_write) {
  ++node->openers;
  node->readers += reads;
  node->writers += writes;
  node->read_sharers += shares_read_;
  node->write_sharers += shares_write_;
}

FileObject::~FileObject() {
  --node->openers;
  node->readers -= reads;
  node->writers -= writes;
  node->read_sharers -= shares_read_;
  node->write_sharers -= shares_write_;
}

bool FileObject::MayOpen(const FileNode& node, bool read, bool write, bool share_read,
                         bool share_write) {
  const bool others_let_it = (!read || node.read_sharers == node.openers) &&
                             (!write || node.write_sharers == node.openers);
  const bool it_lets_others =
      (node.readers == 0 || share_read) && (node.writers == 0 || share_write);
  return others_let_it && it_lets_others;
}

void Waitable::ServeWaiters(Scheduler& scheduler) {
  while (!waiters.empty()) {
    Waiter* waiter = waiters.front();
    // A waiter whose time is up, or whose process has ended, gets nothing. It leaves at its next
    // turn.
    const bool leaves = waiter->thread->strand->state != Strand::State::kWaiting ||
                        (waiter->thread->MustLeave() && !waiter->is_driver);
    if (!leaves) {
      const std::optional<std::uint32_t> result = TryTake(*waiter->thread);
      if (!result) return;
      waiter->result = *result;
      scheduler.WakeUp(*waiter->thread->strand, Wake::kSignal);
    }
    waiters.pop_front();
  }
}

Mutex::~Mutex() {
  if (owner_ != nullptr) std::erase(owner_->owned, this);
}

std::optional<std::uint32_t> Mutex::TryTake(ThreadState& thread) {
  if (owner_ != nullptr && owner_ != &thread) return std::nullopt;
  if (owner_ == nullptr) {
    owner_ = &thread;
    thread.owned.push_back(this);
  }
  ++depth_;
  return std::exchange(abandoned_, false) ? WAIT_ABANDONED : WAIT_OBJECT_0;
}

bool Mutex::Release(ThreadState& thread) {
  if (owner_ != &thread) return false;
  if (--depth_ > 0) return true;
  std::erase(owner_->owned, this);
  owner_ = nullptr;
  return true;
}

void Mutex::Abandon() {
  std::erase(owner_->owned, this);
  owner_ = nullptr;
  depth_ = 0;
  abandoned_ = true;
}

std::optional<std::uint32_t> Event::TryTake(ThreadState& /*thread*/) {
  if (!signalled_) return std::nullopt;
  signalled_ = manual_reset_;
  return WAIT_OBJECT_0;
}

std::optional<std::uint32_t> ThreadObject::TryTake(ThreadState& /*thread*/) {
  return ended ? std::optional<std::uint32_t>(WAIT_OBJECT_0) : std::nullopt;
}

std::optional<std::uint32_t> ProcessObject::TryTake(ThreadState& /*thread*/) {
  return ended ? std::optional<std::uint32_t>(WAIT_OBJECT_0) : std::nullopt;
}

}  // namespace sim
