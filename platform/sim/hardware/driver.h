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
  std::uint32_t in_bytes;  // as the caller stated it
  std::span<std::uint8_t> out;
  std::uint32_t returned = 0;          // how many bytes of `out` the caller is told
  std::vector<std::string> changes{};  // what changed in the hardware, for the journal
};

// How many may have a driver open at a time.
enum class DriverUsers : std::uint8_t { kMany, kOne };

class Driver {
 public:
  explicit Driver(std::string name, DriverUsers users = DriverUsers::kMany)
      : name_(std::move(name)), users_(users) {}
  virtual ~Driver() = default;
  Driver& operator=(const Driver&) = delete;

  // A driver in the same state that nobody has open.
  [[nodiscard]] virtual std::shared_ptr<Driver> Clone() const = 0;

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] DriverUsers users() const { return users_; }
  // The name of a control code, for the journal; empty for one that the driver does not know, which
  // is then refused and recorded as misuse.
  [[nodiscard]] virtual std::string_view CodeName(std::uint32_t code) const = 0;
  // Whether a code takes a number in place of the input's size, and no input.
  [[nodiscard]] virtual bool TakesValueInSize(std::uint32_t /*code*/) const { return false; }
  // The request as the journal shows it.
  [[nodiscard]] virtual std::string Describe(const DriverRequest& request) const {
    return std::string(CodeName(request.code));
  }
  // For a program that opens the driver: false while its one user has it. Each open that succeeds
  // has its close.
  [[nodiscard]] bool Open() {
    if (users_ == DriverUsers::kOne && is_open_) return false;
    is_open_ = true;
    return true;
  }
  void Close() { is_open_ = false; }
  // Does what the code says. 0, or the system error with which the call fails.
  virtual std::uint32_t Control(DriverRequest& request) = 0;
  // The device restarts: what does not outlive that is as after power-up.
  virtual void Restart() {}

 protected:
  Driver(const Driver& other) : name_(other.name_), users_(other.users_) {}

 private:
  std::string name_;
  DriverUsers users_;
  bool is_open_ = false;  // of one with many users: means nothing
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_DRIVER_H_
