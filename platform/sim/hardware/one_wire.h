// The one-wire bus and its driver "WIR1:".
#ifndef PLATFORM_SIM_HARDWARE_ONE_WIRE_H_
#define PLATFORM_SIM_HARDWARE_ONE_WIRE_H_

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "platform/sim/hardware/driver.h"

namespace sim {

struct OneWireDevice {
  std::array<std::uint8_t, 8> id{};
  std::vector<std::uint8_t> memory;
};

// A failure of the calls with one control code.
struct OneWireFailure {
  std::uint32_t code;
  unsigned nth = 0;          // which call with this code fails, from 1; 0: every call
  std::uint32_t error = 0;   // the system error with which the call fails, or
  std::uint32_t status = 0;  // the driver's status in a call that succeeds
};

// Every call takes and gives a record of 280 bytes: index or count (0), id (4), start address (12),
// byte count or memory size (16), memory (20), status (276). Devices are found by a search only.
class OneWireBus : public Driver {
 public:
  static constexpr std::uint32_t kSearch = 0x80100004;
  static constexpr std::uint32_t kGetDeviceCount = 0x80100008;
  static constexpr std::uint32_t kGetDeviceId = 0x8010000C;
  static constexpr std::uint32_t kGetMemorySize = 0x80100014;
  static constexpr std::uint32_t kReadMemory = 0x80100018;
  // The status for an index behind the last device.
  static constexpr std::uint32_t kNoSuchDevice = 2;

  explicit OneWireBus(std::vector<OneWireDevice> devices = {})
      : Driver("WIR1:"), devices_(std::move(devices)) {}

  // Calls are counted from here. If two failures fit a call, the first is used.
  void Plan(OneWireFailure failure) { failures_.push_back({failure, 0}); }
  // The number of devices that the driver gives instead of the true one.
  void set_reported_count(std::uint32_t count) { reported_count_ = count; }

  // Whether its devices stand on the bus, which the next search finds out.
  void set_attached(bool attached) { attached_ = attached; }

  [[nodiscard]] std::shared_ptr<Driver> Clone() const override {
    return std::make_shared<OneWireBus>(*this);
  }
  [[nodiscard]] std::string_view CodeName(std::uint32_t code) const override;
  std::uint32_t Control(DriverRequest& request) override;

 private:
  struct Record;
  struct Planned {
    OneWireFailure failure;
    unsigned seen;
  };
  const OneWireFailure* Due(std::uint32_t code);
  void Answer(std::uint32_t code, Record& record);
  void AnswerForDevice(std::uint32_t code, Record& record) const;

  std::vector<OneWireDevice> devices_;
  std::optional<std::uint32_t> reported_count_;
  bool attached_ = true;
  std::size_t found_ = 0;
  std::vector<Planned> failures_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_ONE_WIRE_H_
