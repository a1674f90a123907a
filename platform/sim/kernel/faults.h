// Counts the platform calls, and decides which of them fail.
#ifndef PLATFORM_SIM_KERNEL_FAULTS_H_
#define PLATFORM_SIM_KERNEL_FAULTS_H_

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/device.h"

namespace sim {

// The platform's calls by name, from its import lists.
enum class CallId : std::uint8_t {
#define SIM_CALL(name) name,
#include "calls.inc"
#undef SIM_CALL
  kCount,
};

[[nodiscard]] std::string_view CallName(CallId id);
[[nodiscard]] std::optional<CallId> CallFromName(std::string_view name);

class Faults {
 public:
  // Throws std::invalid_argument for a name that is no platform call.
  void Plan(Fault fault);
  void Clear() {
    plans_.clear();
    due_before_ = faulted_.size();
  }

  // Counts a call. Returns the fault that is planned for it, or nullptr. `subject` is asked where a
  // plan has one.
  const Fault* Count(CallId id, const std::function<std::string()>& subject);
  // The calls that had a fault, ever, in their order; and those since the plans were cleared.
  [[nodiscard]] const std::vector<CallId>& faulted() const { return faulted_; }
  [[nodiscard]] std::span<const CallId> faulted_since_clear() const {
    return std::span(faulted_).subspan(due_before_);
  }
  [[nodiscard]] std::vector<std::string> NotReached() const;
  [[nodiscard]] unsigned calls(CallId id) const { return counts_[static_cast<std::size_t>(id)]; }
  [[nodiscard]] unsigned calls() const { return total_; }
  // Whether a call may fail by a plan from now on.
  [[nodiscard]] bool are_planned() const { return !plans_.empty(); }
  // How many calls had a fault, ever; and how many of those ended their process.
  [[nodiscard]] std::size_t due() const { return faulted_.size(); }
  [[nodiscard]] unsigned kills() const { return kills_; }

 private:
  struct Planned {
    Fault fault;
    std::optional<CallId> id;  // nullopt: any
    unsigned seen = 0;
  };
  std::vector<Planned> plans_;
  std::vector<CallId> faulted_;
  std::size_t due_before_ = 0;  // of those, when the plans were cleared
  std::array<unsigned, static_cast<std::size_t>(CallId::kCount)> counts_{};
  unsigned total_ = 0;
  unsigned kills_ = 0;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_FAULTS_H_
