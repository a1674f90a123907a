// Drivers that programs reach by a name such as "WIR1:".
#ifndef PLATFORM_SIM_HARDWARE_DRIVER_H_
#define PLATFORM_SIM_HARDWARE_DRIVER_H_

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sim {

// What a driver answers to a request that is not as it should be.
inline constexpr std::uint32_t kDriverInvalidParameter = 87;  // ERROR_INVALID_PARAMETER

// One I/O control. The answer is written into `out`, as far as it has room.
struct DriverRequest {
  std::uint32_t code;
  std::span<const std::uint8_t> in;
  std::uint32_t in_bytes;  // the size that the caller gave
  std::span<std::uint8_t> out;
  std::uint32_t returned = 0;          // the byte count for the caller
  std::vector<std::string> changes{};  // the changes in the hardware, for the journal
};

// How many programs may have a driver open at a time.
enum class DriverUsers : std::uint8_t { kMany, kOne };

class Driver {
 public:
  explicit Driver(std::string name, DriverUsers users = DriverUsers::kMany)
      : name_(std::move(name)), users_(users) {}
  virtual ~Driver() = default;
  Driver& operator=(const Driver&) = delete;

  // A copy of the driver in the same state, which nobody has open.
  [[nodiscard]] virtual std::shared_ptr<Driver> Clone() const = 0;

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] DriverUsers users() const { return users_; }
  // The name of a control code, for the journal. Empty for a code that the driver does not know;
  // the code is then refused and recorded as misuse.
  [[nodiscard]] virtual std::string_view CodeName(std::uint32_t code) const = 0;
  // Whether the code takes a number in the argument for the input's size, and no input.
  [[nodiscard]] virtual bool TakesValueInSize(std::uint32_t /*code*/) const { return false; }
  // The request as the journal shows it.
  [[nodiscard]] virtual std::string Describe(const DriverRequest& request) const {
    return std::string(CodeName(request.code));
  }
  // Opens the driver for a program. False while its single user has it open. Each open that
  // succeeds is followed by a close.
  [[nodiscard]] bool Open() {
    if (users_ == DriverUsers::kOne && is_open_) return false;
    is_open_ = true;
    return true;
  }
  void Close() { is_open_ = false; }
  // Executes the control code. Returns 0, or the system error with which the call fails.
  virtual std::uint32_t Control(DriverRequest& request) = 0;
  // The device restarts: the driver returns to its state after power-up.
  virtual void Restart() {}

 protected:
  Driver(const Driver& other) : name_(other.name_), users_(other.users_) {}

 private:
  std::string name_;
  DriverUsers users_;
  bool is_open_ = false;  // unused for a driver with many users
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_DRIVER_H_
