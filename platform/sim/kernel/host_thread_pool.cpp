#include "platform/sim/kernel/host_thread_pool.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace sim {

class HostThread::Worker {
 public:
  Worker() : thread_([this] { Work(); }) {}
  ~Worker() {
    {
      const std::lock_guard lock(mutex_);
      ends_ = true;
    }
    changed_.notify_all();
    thread_.join();
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  void Begin(std::function<void()> body) {
    {
      const std::lock_guard lock(mutex_);
      body_ = std::move(body);
    }
    changed_.notify_all();
  }
  void AwaitEnd() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !body_; });
  }

 private:
  void Work() {
    std::unique_lock lock(mutex_);
    for (;;) {
      changed_.wait(lock, [this] { return ends_ || body_; });
      if (!body_) return;
      lock.unlock();
      body_();
      lock.lock();
      body_ = nullptr;
      changed_.notify_all();
    }
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::function<void()> body_;
  bool ends_ = false;
  std::thread thread_;
};

class HostThread::Pool {
 public:
  std::shared_ptr<Worker> TakeOrMake() {
    const std::lock_guard lock(mutex_);
    if (idle_.empty()) return std::make_shared<Worker>();
    std::shared_ptr<Worker> worker = std::move(idle_.back());
    idle_.pop_back();
    return worker;
  }
  void Keep(std::shared_ptr<Worker> worker) {
    const std::lock_guard lock(mutex_);
    idle_.push_back(std::move(worker));
  }

 private:
  std::mutex mutex_;
  std::vector<std::shared_ptr<Worker>> idle_;
};

// On Windows the threads of a process have ended, or cannot end, when the library's statics go.
std::shared_ptr<HostThread::Pool> HostThread::Kept() {
#ifdef _WIN32
  static const auto* const pool = new std::shared_ptr<Pool>(std::make_shared<Pool>());
  return *pool;
#else
  static const auto pool = std::make_shared<Pool>();
  return pool;
#endif
}

HostThread::HostThread(std::function<void()> body) : pool_(Kept()), worker_(pool_->TakeOrMake()) {
  worker_->Begin(std::move(body));
}

void HostThread::Join() {
  if (worker_ == nullptr) return;
  worker_->AwaitEnd();
  pool_->Keep(std::exchange(worker_, nullptr));
  pool_.reset();
}

}  // namespace sim
