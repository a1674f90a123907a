// The accelerometer's driver, "ISL0:". It can be opened and has no control codes.
#ifndef PLATFORM_SIM_HARDWARE_ACCELEROMETER_H_
#define PLATFORM_SIM_HARDWARE_ACCELEROMETER_H_

#include "platform/sim/hardware/driver.h"

namespace sim {

class Accelerometer : public Driver {
 public:
  Accelerometer() : Driver("ISL0:") {}

  [[nodiscard]] std::shared_ptr<Driver> Clone() const override {
    return std::make_shared<Accelerometer>(*this);
  }
  [[nodiscard]] std::string_view CodeName(std::uint32_t /*code*/) const override { return {}; }
  std::uint32_t Control(DriverRequest& /*request*/) override {
    constexpr std::uint32_t kNotSupported = 50;
    return kNotSupported;
  }
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_ACCELEROMETER_H_
