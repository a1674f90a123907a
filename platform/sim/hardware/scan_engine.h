// The scan engine inside the device and its driver "SCD1:".
#ifndef PLATFORM_SIM_HARDWARE_SCAN_ENGINE_H_
#define PLATFORM_SIM_HARDWARE_SCAN_ENGINE_H_

#include <cstdint>

#include "platform/sim/hardware/driver.h"

namespace sim {

struct Hardware;

struct ScanEngineState {
  bool has_power = false;
  bool is_enabled = false;
  bool is_downloading = false;  // flash download in place of normal operation
  bool is_triggered = false;

  bool operator==(const ScanEngineState&) const = default;
};

// Every control code takes 0 or 1 in 32 bits and gives no answer. The driver has one user at a
// time.
class ScanDriver : public Driver {
 public:
  static constexpr std::uint32_t kSetDownload = 0x22003C;
  static constexpr std::uint32_t kSetPower = 0x220044;
  static constexpr std::uint32_t kEnable = 0x22004C;
  static constexpr std::uint32_t kSetTrigger = 0x22006C;
  static constexpr std::uint32_t kSetSpiClock = 0x2200D0;  // the inverted trigger of some engines

  explicit ScanDriver(const ScanEngineState& state = {})
      : Driver("SCD1:", DriverUsers::kOne), state_(state) {}

  [[nodiscard]] const ScanEngineState& state() const { return state_; }
  // Whether the engine has changed since the device was made.
  [[nodiscard]] bool has_changed() const { return has_changed_; }
  void ChangeTo(const ScanEngineState& state);

  [[nodiscard]] std::shared_ptr<Driver> Clone() const override {
    return std::make_shared<ScanDriver>(*this);
  }
  [[nodiscard]] std::string_view CodeName(std::uint32_t code) const override;
  [[nodiscard]] std::string Describe(const DriverRequest& request) const override;
  std::uint32_t Control(DriverRequest& request) override;

 private:
  ScanEngineState state_;
  bool has_changed_ = false;
};

// The scan engine of a device, or nullptr.
[[nodiscard]] ScanDriver* FindScanDriver(const Hardware& hardware);

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_SCAN_ENGINE_H_
