// The objects behind handles.
#ifndef PLATFORM_SIM_KERNEL_OBJECTS_H_
#define PLATFORM_SIM_KERNEL_OBJECTS_H_

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/sim/hardware/driver.h"
#include "platform/sim/kernel/file_system.h"
#include "platform/sim/kernel/registry.h"
#include "platform/sim/kernel/scheduler.h"

namespace sim {

class ThreadState;

enum class ObjectKind : std::uint8_t {
  kKey,
  kFile,
  kDriver,
  kMutex,
  kEvent,
  kThread,
  kProcess,
  kCryptContext,
  kCryptHash
};

[[nodiscard]] const char* ObjectKindName(ObjectKind kind);

class Object {
 public:
  explicit Object(ObjectKind kind, std::u16string name = {})
      : kind_(kind), name_(std::move(name)) {}
  virtual ~Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  [[nodiscard]] ObjectKind kind() const { return kind_; }
  [[nodiscard]] const std::u16string& name() const { return name_; }

 private:
  ObjectKind kind_;
  std::u16string name_;  // of a named kernel object, else empty
};

struct KeyObject : Object {
  static constexpr ObjectKind kKind = ObjectKind::kKey;
  KeyObject(std::shared_ptr<RegistryKey> opened, std::uint32_t asked_access)
      : Object(kKind), key(std::move(opened)), access(asked_access) {
    key->AddHandle();
  }
  ~KeyObject() override { key->RemoveHandle(); }
  const std::shared_ptr<RegistryKey> key;
  const std::uint32_t access;
};

// An open file. Its sharing mode applies to other opens until it is closed.
class FileObject : public Object {
 public:
  static constexpr ObjectKind kKind = ObjectKind::kFile;
  FileObject(std::shared_ptr<FileNode> opened, std::string opened_path, bool may_read,
             bool may_write, bool share_read, bool share_write);
  ~FileObject() override;

  // Whether the sharing rules allow such an open beside the present ones.
  [[nodiscard]] static bool MayOpen(const FileNode& node, bool read, bool write, bool share_read,
                                    bool share_write);

  const std::shared_ptr<FileNode> node;
  const std::string path;
  const bool reads;
  const bool writes;
  std::size_t position = 0;

 private:
  bool shares_read_;
  bool shares_write_;
};

// An open driver.
struct DriverObject : Object {
  static constexpr ObjectKind kKind = ObjectKind::kDriver;
  explicit DriverObject(std::shared_ptr<Driver> opened)
      : Object(kKind), driver(std::move(opened)) {}
  ~DriverObject() override { driver->Close(); }
  const std::shared_ptr<Driver> driver;
};

struct Waiter {
  ThreadState* thread;
  bool is_driver = false;  // it waits outside of the process, and the end of that does not stop it
  std::uint32_t result = 0;
};

// An object that threads can wait for. They get it in the order in which they began to wait.
class Waitable : public Object {
 public:
  using Object::Object;
  // Gives the object to the thread if it is free now, and returns the result of the wait.
  virtual std::optional<std::uint32_t> TryTake(ThreadState& thread) = 0;
  // Gives the object to the waiting threads, until it is no longer free.
  void ServeWaiters(Scheduler& scheduler);

  std::deque<Waiter*> waiters;
};

class Mutex : public Waitable {
 public:
  static constexpr ObjectKind kKind = ObjectKind::kMutex;
  explicit Mutex(std::u16string name) : Waitable(kKind, std::move(name)) {}
  ~Mutex() override;

  std::optional<std::uint32_t> TryTake(ThreadState& thread) override;
  // False where the thread does not own it.
  bool Release(ThreadState& thread);
  void Abandon();
  [[nodiscard]] const ThreadState* owner() const { return owner_; }

 private:
  ThreadState* owner_ = nullptr;
  unsigned depth_ = 0;
  bool abandoned_ = false;
};

class Event : public Waitable {
 public:
  static constexpr ObjectKind kKind = ObjectKind::kEvent;
  Event(std::u16string name, bool manual_reset, bool signalled)
      : Waitable(kKind, std::move(name)), manual_reset_(manual_reset), signalled_(signalled) {}

  std::optional<std::uint32_t> TryTake(ThreadState& thread) override;
  void set_signalled(bool signalled) { signalled_ = signalled; }
  [[nodiscard]] bool signalled() const { return signalled_; }

 private:
  bool manual_reset_;
  bool signalled_;
};

// Signalled for good once the thread has ended.
class ThreadObject : public Waitable {
 public:
  static constexpr ObjectKind kKind = ObjectKind::kThread;
  ThreadObject() : Waitable(kKind) {}
  std::optional<std::uint32_t> TryTake(ThreadState& thread) override;
  bool ended = false;
};

// Signalled for good once the process has ended.
class ProcessObject : public Waitable {
 public:
  static constexpr ObjectKind kKind = ObjectKind::kProcess;
  ProcessObject() : Waitable(kKind) {}
  std::optional<std::uint32_t> TryTake(ThreadState& thread) override;
  bool ended = false;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_OBJECTS_H_
