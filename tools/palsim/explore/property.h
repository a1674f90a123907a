// What must hold on every device, whatever its processes do and whatever happens to them.
//
// A property looks at each call of an export when it begins and when it ends, and at the device
// after each statement. It counts how often its condition was met: one whose condition is never met
// says nothing.
#ifndef TOOLS_PALSIM_EXPLORE_PROPERTY_H_
#define TOOLS_PALSIM_EXPLORE_PROPERTY_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/sim/device.h"
#include "tools/palsim/export_call.h"

namespace palsim {

struct Scene;

// One call of an export.
struct WatchedCall {
  std::size_t export_index = 0;
  std::string_view name;
  const sim::Process* process = nullptr;
  const std::vector<std::string>* arguments = nullptr;
  std::uint64_t begin_ms = 0;
  std::uint64_t writes_at_begin = 0;  // Scene::Writes() then
  std::size_t due_at_begin = 0;       // the calls with a fault until then
  bool alone = true;  // so far no other call ran meanwhile, and nothing came from outside
  bool alone_in_process = true;  // so far its process has made no other call meanwhile

  // At its end:
  const CallOutcome* outcome = nullptr;  // nullptr: its process ended in it
  std::uint64_t end_ms = 0;
  std::size_t faults = 0;  // how many platform calls failed by a plan meanwhile, whoever made them

  [[nodiscard]] bool undisturbed() const { return alone && faults == 0; }
  [[nodiscard]] bool returned() const { return outcome != nullptr; }
  // Of an argument that is a number; 0 for a text.
  [[nodiscard]] std::uint32_t Number(std::size_t argument) const;
};

class Property {
 public:
  Property() = default;
  virtual ~Property() = default;
  Property(const Property&) = delete;
  Property& operator=(const Property&) = delete;

  virtual void CallBegins(Scene& /*scene*/, const WatchedCall& /*call*/) {}
  virtual void CallEnds(Scene& /*scene*/, const WatchedCall& /*call*/) {}
  // Something from outside has changed the device, or an export that writes what others ask it to.
  virtual void DeviceChanged(Scene& /*scene*/) {}
  // A statement has ended, and the library has written to the registry since the last one.
  virtual void RegistryChanged(Scene& /*scene*/) {}
  virtual void ProcessEnds(Scene& /*scene*/) {}  // it detaches; it is not killed
  virtual void RestartBegins(Scene& /*scene*/) {}
  virtual void StatementEnds(Scene& /*scene*/) {}

  [[nodiscard]] std::uint64_t met() const { return met_; }
  [[nodiscard]] const std::optional<std::string>& violation() const { return violation_; }

 protected:
  // The condition is met: what follows is checked.
  void Met() { ++met_; }
  void Violated(std::string how) {
    if (!violation_) violation_ = std::move(how);
  }

 private:
  std::uint64_t met_ = 0;
  std::optional<std::string> violation_;
};

struct PropertyRow {
  std::string_view name;
  std::string_view sentence;
  std::unique_ptr<Property> (*make)();
};

template <class Kind>
std::unique_ptr<Property> Make() {
  return std::make_unique<Kind>();
}

// All that there are.
[[nodiscard]] std::span<const PropertyRow> Properties();
// Throws UsageError for a name that is no property.
[[nodiscard]] const PropertyRow& FindProperty(std::string_view name);

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_PROPERTY_H_
