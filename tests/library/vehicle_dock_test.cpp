// The search for a vehicle dock on buses that are whole, faulty, empty or missing.
#include <fmt/format.h>

#include <string>
#include <vector>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/one_wire.h"
#include "tests/support/device_test.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace std::string_literals;
using Bus = sim::OneWireBus;

sim::OneWireDevice MemoryDevice(const std::string& memory) {
  return {{1, 2, 3, 4, 5, 6, 7, 0xFF}, {memory.begin(), memory.end()}};
}

class VehicleDock : public DeviceTest {
 protected:
  Bus& PlugIn(std::vector<sim::OneWireDevice> devices) {
    auto bus = std::make_shared<Bus>(std::move(devices));
    device.hardware().drivers = {bus};
    return *bus;
  }
  // The answer; the driver is closed again after it.
  DWORD IsAttached() {
    const DWORD answer = process.exports().PALOneWire_IsVehicleDockAttached();
    EXPECT_EQ(process.new_handles(), 0u);
    return answer;
  }
  std::vector<std::string> ErrorLines() {
    return LinesBehind("0xC45C0000 PALOneWire::FindVehicleDock(): ");
  }

  sim::Process process{device};
};

TEST_F(VehicleDock, IsKnownByItsPartNumber) {
  struct Case {
    std::string memory;
    DWORD attached;
  };
  for (const Case& test : {
           Case{"\x01"s + "871231", 1},
           Case{"\xFE"s + "871231", 1},   // the record's type does not matter
           Case{"\x01"s + "8712310", 1},  // nor does what follows the six characters
           Case{"\x01"s + "871232", 0},
           Case{"\x01"s + "87123\0"s, 0},
           Case{"\x01"s + "87123", 0},  // the memory ends in the part number
           Case{"871231", 0},
           Case{"", 0},
           Case{"\x01%s%n%s", 0},
       }) {
    PlugIn({MemoryDevice(test.memory)});
    EXPECT_EQ(IsAttached(), test.attached) << test.memory;
  }
}

TEST_F(VehicleDock, IsFoundBehindADeviceThatFails) {
  struct Case {
    sim::OneWireFailure failure;
    std::vector<std::string> errors;
  };
  for (const Case& test : {
           Case{{Bus::kGetDeviceId, 1, 31, 0}, {"  get dev ID IOCTL failed"}},
           Case{{Bus::kGetDeviceId, 1, 0, 0xBAD}, {"  Get dev ID failed 00000BAD"}},
           Case{{Bus::kGetMemorySize, 1, 31, 0}, {}},
           Case{{Bus::kGetMemorySize, 1, 0, 0xBAD}, {"  Memsize failed 00000BAD"}},
           Case{{Bus::kReadMemory, 1, 31, 0}, {"  read mem IOCTL failed"}},
           Case{{Bus::kReadMemory, 1, 0, 0xFFFFFFFF}, {"  read mem failed FFFFFFFF"}},
       }) {
    for (const std::string second : {"871231", "000000"}) {
      device.journal().Clear();
      PlugIn({MemoryDevice("\x01"s + "871231"), MemoryDevice("\x01"s + second)}).Plan(test.failure);
      EXPECT_EQ(IsAttached(), second == "871231" ? 1u : 0u);
      EXPECT_EQ(ErrorLines(), test.errors);
    }
  }
}

TEST_F(VehicleDock, IsNotLookedForOnABusThatFails) {
  struct Case {
    sim::OneWireFailure failure;
    std::string error;
    unsigned calls;
  };
  for (const Case& test : {
           Case{{Bus::kSearch, 1, 31, 0}, "  search IOCTL failed", 1},
           Case{{Bus::kSearch, 1, 0, 0x17}, "  search failed 00000017", 1},
           Case{{Bus::kGetDeviceCount, 1, 31, 0}, "  get num devs IOCTL failed", 2},
           Case{{Bus::kGetDeviceCount, 1, 0, 0x17}, "  get num devs failed 00000017", 2},
       }) {
    device.journal().Clear();
    PlugIn({MemoryDevice("\x01"s + "871231")}).Plan(test.failure);
    const unsigned calls_before = device.calls("DeviceIoControl");
    EXPECT_EQ(IsAttached(), 0u);
    EXPECT_EQ(device.calls("DeviceIoControl") - calls_before, test.calls);
    EXPECT_EQ(ErrorLines(), std::vector<std::string>{test.error});
    EXPECT_EQ(TraceLines().back(), "Exiting PALOneWire::FindVehicleDock()");
  }
}

TEST_F(VehicleDock, IsNotThereWithoutDriverOrDevices) {
  EXPECT_EQ(IsAttached(), 0u);
  EXPECT_EQ(TraceLines(),
            std::vector<std::string>{"PALOneWire::Open - Error opening OneWire driver, 55"});
  PlugIn({});
  EXPECT_EQ(IsAttached(), 0u);
  EXPECT_EQ(device.calls("DeviceIoControl"), 2u);
}

TEST_F(VehicleDock, AsksNoMoreThan256Devices) {
  PlugIn({MemoryDevice("\x01"s + "000000")}).set_reported_count(0xFFFFFFFF);
  EXPECT_EQ(IsAttached(), 0u);
  constexpr unsigned kFirstDevice = 3;  // the others have no id
  EXPECT_EQ(device.calls("DeviceIoControl"), 2 + kFirstDevice + 255);
}

TEST_F(VehicleDock, TracesWhatItFinds) {
  PlugIn({MemoryDevice("\x0A"s + "871231")});
  EXPECT_EQ(IsAttached(), 1u);
  EXPECT_EQ(CategorisedLines(),
            (std::vector<std::string>{
                "0x445C0000 Entering PALOneWire::FindVehicleDock()",
                "0x445C0000 PALOneWire::FindVehicleDock(): Num devices found = 1",
                "0x445C0000 PALOneWire::FindVehicleDock(): Dev00 ID: 01 02 03 04 05 06 07 FF",
                "0x445C0000 PALOneWire::FindVehicleDock():   Mem size = 7",
                "0x445C0000 PALOneWire::FindVehicleDock(): OneWireReadMem Record Type: 0a, Bytes "
                "Read - 280",
                "0x445C0000 PALOneWire::FindVehicleDock() Part Number: 871231",
                "0x445C0000 Exiting PALOneWire::FindVehicleDock()",
            }));
}

TEST_F(VehicleDock, TracesTheFillWhereTheDriverGivesNoId) {
  PlugIn({MemoryDevice("\x0A"s + "871231")}).Plan({Bus::kGetDeviceId, 1, 0, 0});
  EXPECT_EQ(IsAttached(), 1u);
  EXPECT_EQ(
      TraceLines("PALOneWire::FindVehicleDock(): Dev"),
      std::vector<std::string>{"PALOneWire::FindVehicleDock(): Dev00 ID: CC CC CC CC CC CC CC CC"});
}

const std::string kDescription = "name = \"x\"\n[one_wire]\n";

TEST(VehicleDockDescription, GivesTheBusItsDevicesAndFailures) {
  struct Case {
    std::string bus;
    DWORD attached;
  };
  const std::string dock = R"({ id = "0102030405060708", memory = "01 383731323331" })";
  const std::string failure = R"(failures = [{ call = "read_memory", )";
  for (const Case& test : {
           Case{"", 0},
           Case{fmt::format("devices = [{}]", dock), 1},
           Case{fmt::format("devices = [{}]\n{}error = 31 }}]", dock, failure), 0},
           Case{fmt::format("devices = [{0}, {0}]\n{1}nth = 1, status = 5 }}]", dock, failure), 1},
       }) {
    const TemporaryFolder folder;
    folder.Write("device.toml", kDescription + test.bus);
    sim::Device device;
    sim::LoadDevice(device, folder.path());
    sim::Process process(device);
    EXPECT_EQ(process.exports().PALOneWire_IsVehicleDockAttached(), test.attached) << test.bus;
  }
}

}  // namespace
