// The configuration driver "CFG1:", which keeps the boot option. It has one user at a time.
#ifndef PLATFORM_SIM_HARDWARE_CONFIGURATION_DRIVER_H_
#define PLATFORM_SIM_HARDWARE_CONFIGURATION_DRIVER_H_

#include <optional>

#include "platform/sim/hardware/driver.h"

namespace sim {

class ConfigurationDriver : public Driver {
 public:
  static constexpr std::uint32_t kGetBootOption = 100000;
  static constexpr std::uint32_t kSetBootOption = 100001;

  explicit ConfigurationDriver(std::uint8_t boot_option = 0)
      : Driver("CFG1:", DriverUsers::kOne), first_option_(boot_option) {}

  [[nodiscard]] std::uint8_t boot_option() const { return set_option_.value_or(first_option_); }
  // The option that programs have set; nothing if they set none.
  [[nodiscard]] std::optional<std::uint8_t> set_option() const { return set_option_; }
  void set_boot_option(std::uint8_t option) { set_option_ = option; }

  [[nodiscard]] std::shared_ptr<Driver> Clone() const override {
    return std::make_shared<ConfigurationDriver>(*this);
  }
  [[nodiscard]] std::string_view CodeName(std::uint32_t code) const override;
  [[nodiscard]] bool TakesValueInSize(std::uint32_t code) const override {
    return code == kSetBootOption;
  }
  std::uint32_t Control(DriverRequest& request) override;

 private:
  std::uint8_t first_option_;
  std::optional<std::uint8_t> set_option_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_CONFIGURATION_DRIVER_H_
