// Restarts: what is asked of the platform, and what a restart means to the simulated device.
#include <string>
#include <vector>

#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;
using sim::RestartKind;

class Boot : public DeviceTest {
 protected:
  Lines PowerLines() { return device.journal().Texts(sim::Effect::kPower); }

  sim::Process process{device};
};

TEST_F(Boot, RestartsTheDeviceAndDoesNotComeBack) {
  struct Case {
    LONG option;
    Lines power;
    RestartKind kind;
  };
  for (const Case& test :
       {Case{'0', {"restart, warm"}, RestartKind::kWarm},
        Case{'1', {"restart, cold"}, RestartKind::kCold},
        Case{'2', {"restart prepared with 0x00040006", "restart, warm"}, RestartKind::kWarm}}) {
    device.journal().Clear();
    sim::Process caller(device, "boot.exe");
    EXPECT_THROW(caller.exports().PALBOOT_BootTerminal(test.option), sim::ProcessKilled);
    EXPECT_EQ(PowerLines(), test.power);
    EXPECT_EQ(device.restarts().back(), test.kind);
    EXPECT_FALSE(caller.alive());
  }
  EXPECT_FALSE(process.alive()) << "every process ends";
  EXPECT_EQ(device.restarts().size(), 3u);
}

TEST_F(Boot, IsNotAskedForByAnyOtherNumber) {
  for (const LONG option : {0, 1, 2, 47, 51, -1, 0x130}) {
    device.journal().Clear();
    EXPECT_EQ(process.exports().PALBOOT_BootTerminal(option), E_FAIL) << option;
    EXPECT_EQ(CategorisedLines(), Lines{"0xC3FA0000 Boot request invalid option"});
  }
  EXPECT_EQ(PowerLines(), Lines{});
  EXPECT_TRUE(process.alive());
}

TEST_F(Boot, DoesNotFollowAControlThatFails) {
  device.PlanFault({.call = "KernelIoControl", .error = 0x57});
  EXPECT_EQ(process.exports().PALBOOT_BootTerminal('2'), S_OK);
  EXPECT_EQ(CategorisedLines(), Lines{"0xC3FA0000 KernelIoControl failed. win32err:0x57"});
  EXPECT_EQ(device.calls("SetSystemPowerState"), 0u);
}

TEST_F(Boot, IsAnsweredWithSuccessWhereThePlatformRefusesIt) {
  device.PlanFault({.call = "SetSystemPowerState", .from_then_on = true});
  for (const LONG option : {'0', '1', '2'}) {
    EXPECT_EQ(process.exports().PALBOOT_BootTerminal(option), S_OK);
  }
  EXPECT_EQ(TraceLines(), Lines{});
  EXPECT_TRUE(process.alive());
}

TEST_F(Boot, EndsEveryProcessWhereItIs) {
  sim::Process other(device, "other.exe");
  const auto hold = [] {
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, TEXT("M"));
    Sleep(INFINITE);
    ADD_FAILURE() << "a thread went on after the restart: " << mutex;
  };
  sim::Thread waiting = other.Start(hold);
  int services_started = 0;
  device.StartProgram({"\\Windows\\service.exe", [&](const std::string&) -> std::uint32_t {
                         ++services_started;
                         Sleep(INFINITE);
                         ADD_FAILURE() << "the service went on after the restart";
                         return 0;
                       }});
  device.Advance(10);
  EXPECT_THROW(process.exports().PALBOOT_BootTerminal('0'), sim::ProcessKilled);
  EXPECT_FALSE(waiting.Join());
  EXPECT_FALSE(other.alive());
  device.Advance(10);
  EXPECT_EQ(services_started, 2);

  sim::Process after(device, "after.exe");
  after.Run([] {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("M"));
    EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS)) << "a name outlived it";
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    ReleaseMutex(mutex);
    CloseHandle(mutex);
  });
}

TEST_F(Boot, EndsACallThatAnotherProcessWaitsIn) {
  sim::Process other(device, "other.exe");
  sim::Thread booting = other.Start([&] {
    Sleep(100);
    other.exports().PALBOOT_BootTerminal('0');
    ADD_FAILURE() << "the call came back";
  });
  EXPECT_THROW(process.Run([] { Sleep(1000); }), sim::ProcessKilled);
  EXPECT_EQ(device.now_ms(), 100u);
  EXPECT_FALSE(booting.Join());
}

TEST_F(Boot, IsRefusedByThePlatformInAnyOtherForm) {
  process.Run([] {
    EXPECT_EQ(SetSystemPowerState(TEXT("suspend"), POWER_STATE_RESET, POWER_FORCE), 87u);
    EXPECT_EQ(SetSystemPowerState(nullptr, POWER_STATE_RESET, POWER_FORCE), 87u);
    EXPECT_EQ(SetSystemPowerState(TEXT("reboot"), 0, POWER_FORCE), 87u);
    EXPECT_EQ(SetSystemPowerState(TEXT("reboot"), POWER_STATE_RESET, 0), 87u);
  });
  EXPECT_EQ(device.TakeMisuse().size(), 4u);
  EXPECT_EQ(device.restarts().size(), 0u);
}

}  // namespace
