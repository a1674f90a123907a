// The USB function bus "$bus\\OTG_0_2_0". It decides what the device is for a USB host.
#ifndef PLATFORM_SIM_HARDWARE_USB_FUNCTION_BUS_H_
#define PLATFORM_SIM_HARDWARE_USB_FUNCTION_BUS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/hardware/driver.h"

namespace sim {

struct UsbFunctionClient {
  std::string name;         // at most 127 characters
  std::uint32_t error = 0;  // not 0: it refuses with it to become the current one
};

// A client is chosen in two steps. First it becomes the default client, which is current after a
// restart, then the current one. Both requests hold its name in 256 bytes. The answer with the
// current client has 756 bytes: its name in 128 units and a description in 250. Names are compared
// without regard to case.
class UsbFunctionBus : public Driver {
 public:
  static constexpr std::uint32_t kGetCurrentClient = 0x0022000C;
  static constexpr std::uint32_t kSetDefaultClient = 0x00220018;
  static constexpr std::uint32_t kSetCurrentClient = 0x00220010;
  static constexpr std::uint32_t kNoSuchClient = 1168;  // ERROR_NOT_FOUND

  // At first the default client is the current one. Empty: there is none.
  explicit UsbFunctionBus(std::vector<UsbFunctionClient> clients = {},
                          std::string default_client = {});

  [[nodiscard]] const std::vector<UsbFunctionClient>& clients() const { return clients_; }
  [[nodiscard]] const std::string& default_client() const { return default_; }
  [[nodiscard]] const std::string& current_client() const { return current_; }
  [[nodiscard]] bool Has(std::string_view client) const { return Find(client) != nullptr; }
  void set_default_client(std::string client) { default_ = std::move(client); }
  void set_current_client(std::string client) { current_ = std::move(client); }
  // The text at the beginning of the answer, instead of the client's name: at most 378 units.
  void set_told_name(std::u16string name) { told_name_ = std::move(name); }

  // The clients as the author describes them. The simulator keeps what has changed since.
  [[nodiscard]] bool HasChanged() const;

  [[nodiscard]] std::shared_ptr<Driver> Clone() const override {
    return std::make_shared<UsbFunctionBus>(*this);
  }
  [[nodiscard]] std::string_view CodeName(std::uint32_t code) const override;
  [[nodiscard]] std::string Describe(const DriverRequest& request) const override;
  std::uint32_t Control(DriverRequest& request) override;
  void Restart() override { current_ = default_; }

 private:
  [[nodiscard]] const UsbFunctionClient* Find(std::string_view client) const;
  std::uint32_t TellCurrentClient(DriverRequest& request) const;

  std::vector<UsbFunctionClient> clients_;
  std::string described_;
  std::string default_;
  std::string current_;
  std::optional<std::u16string> told_name_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_HARDWARE_USB_FUNCTION_BUS_H_
