// The scan engine through its driver: what is sent in which order, and what holds when it fails.
#include <algorithm>
#include <string>
#include <vector>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/hardware/scan_engine.h"
#include "tests/support/device_test.h"
#include "tests/support/temporary_folder.h"

namespace {

using Lines = std::vector<std::string>;

// Codes of internal devices: an engine with a trigger of its own, and the two on the SPI clock.
constexpr BYTE kEng17 = 0x0C;
constexpr BYTE kEng14 = 0x10;
constexpr BYTE kEng13 = 0x11;

constexpr const char* kMutexName = "DCEDRIVER_INIT_SEPARATOR";

class Scanner : public DeviceTest {
 protected:
  void Fit(BYTE code) {
    device.hardware().parameters[0x001A].bytes = {code, 0, 0, 0};
    driver = std::make_shared<sim::ScanDriver>();
    device.hardware().drivers = {driver};
  }
  // A new process with the driver open.
  sim::Process& Start() {
    process = std::make_unique<sim::Process>(device);
    EXPECT_EQ(exports().PALSysio_Open(), S_OK);
    device.journal().Clear();
    return *process;
  }
  [[nodiscard]] const sim::Exports& exports() const { return process->exports(); }
  HRESULT Control(DWORD mode) { return exports().PALSysio_ControlScanPower(mode); }
  // "set power 01" for each control that the driver got since the last look.
  Lines TakeSent() {
    const std::string high_bytes = " 00 00 00";
    Lines sent;
    for (const std::string& text : device.journal().Texts(sim::Effect::kDriver)) {
      if (!text.ends_with(high_bytes)) continue;
      sent.push_back(text.substr(6, text.size() - 6 - high_bytes.size()));
    }
    device.journal().Clear();
    return sent;
  }
  // The scanner's own lines: those of the device type are another family's.
  Lines ScannerLines() {
    Lines lines = CategorisedLines();
    std::erase_if(lines, [](const std::string& line) {
      return !line.starts_with("0x43F1") && !line.starts_with("0xC3F1");
    });
    return lines;
  }
  // What one thread of a process does beside the driving one.
  static void HoldMutex(DWORD ms) {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("DCEDRIVER_INIT_SEPARATOR"));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    Sleep(ms);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(CloseHandle(mutex));
  }
  void TearDown() override {
    if (process != nullptr) exports().PALSysio_Close();
    process.reset();
  }

  std::shared_ptr<sim::ScanDriver> driver;
  std::unique_ptr<sim::Process> process;
};

TEST_F(Scanner, SwitchesPowerInTheOrderOfItsEngine) {
  for (const BYTE code : {kEng17, kEng14, kEng13}) {
    Fit(code);
    Start();
    Lines up{"set power 01", "enable 01"};
    Lines down{"set power 00", "enable 00"};
    if (code != kEng17) std::ranges::reverse(up);
    if (code != kEng17) std::ranges::reverse(down);
    struct Step {
      DWORD mode;
      HRESULT result;
      Lines sent;
    };
    for (const Step& step : {
             Step{PAL_SCANNER_POWER_UP, S_OK, up},
             Step{PAL_SCANNER_POWER_UP, S_OK, {"enable 01"}},
             Step{PAL_SCANNER_IDLE, S_OK, {"enable 00"}},
             Step{PAL_SCANNER_POWER_UP, S_OK, {"enable 01"}},
             Step{3, E_FAIL, {}},
             Step{0xFFFFFFFF, E_FAIL, {}},
             Step{PAL_SCANNER_POWER_DOWN, S_OK, down},
             Step{PAL_SCANNER_POWER_DOWN, S_OK, down},
             Step{PAL_SCANNER_POWER_UP, S_OK, up},
         }) {
      EXPECT_EQ(Control(step.mode), step.result);
      EXPECT_EQ(TakeSent(), step.sent) << "mode " << step.mode << ", code " << int{code};
    }
    EXPECT_EQ(driver->state(), (sim::ScanEngineState{true, true, false, false}));
    exports().PALSysio_Close();
  }
}

TEST_F(Scanner, MakesBothStepsWhereOneFails) {
  for (const BYTE code : {kEng17, kEng13}) {
    for (const std::string failing : {"enable", "set power"}) {
      Fit(code);
      Start();
      for (const DWORD mode : {PAL_SCANNER_POWER_UP, PAL_SCANNER_POWER_DOWN}) {
        const unsigned before = device.calls("DeviceIoControl");
        device.PlanFault({.call = "DeviceIoControl", .on = failing});
        EXPECT_EQ(Control(mode), E_FAIL);
        device.ClearFaults();
        EXPECT_EQ(device.calls("DeviceIoControl") - before, 2U);
        EXPECT_EQ(TakeSent().size(), 1U);
        // Only a power step that went well counts: the next two steps up tell.
        const bool counts_as_on = (mode == PAL_SCANNER_POWER_UP) == (failing == "enable");
        EXPECT_EQ(Control(PAL_SCANNER_POWER_UP), S_OK);
        EXPECT_EQ(TakeSent().size(), counts_as_on ? 1U : 2U) << mode << ' ' << failing;
      }
      exports().PALSysio_Close();
    }
  }
}

TEST_F(Scanner, SendsZeroOrOneForAnySwitch) {
  struct Case {
    BYTE code;
    const sim::Export<HRESULT(BOOL)> sim::Exports::*set;
    BOOL argument;
    std::string sent;
    std::string line;
  };
  using Table = sim::Exports;
  for (const Case& test : {
           Case{kEng17, &Table::PALSysio_SetScanTrigger, 1, "set trigger 01",
                "PALSysio_SetScanTrigger( fTriggerOn:1 ) success"},
           Case{kEng17, &Table::PALSysio_SetScanTrigger, -7, "set trigger 01",
                "PALSysio_SetScanTrigger( fTriggerOn:-7 ) success"},
           Case{kEng17, &Table::PALSysio_SetScanTrigger, 0, "set trigger 00",
                "PALSysio_SetScanTrigger( fTriggerOn:0 ) success"},
           Case{kEng14, &Table::PALSysio_SetScanTrigger, 1, "set SPI clock 00",
                "PALSysio_SetScanTrigger( fTriggerOn:1 ) success"},
           Case{kEng13, &Table::PALSysio_SetScanTrigger, 256, "set SPI clock 00",
                "PALSysio_SetScanTrigger( fTriggerOn:256 ) success"},
           Case{kEng13, &Table::PALSysio_SetScanTrigger, 0, "set SPI clock 01",
                "PALSysio_SetScanTrigger( fTriggerOn:0 ) success"},
           Case{kEng17, &Table::PALSysio_SetScanEnable, 5, "enable 01",
                "ScanSetEnable( 5 ) success"},
           Case{kEng17, &Table::PALSysio_DVLSetScanPower, 5, "set power 01",
                "PALSysio_SetScanPower( 1 ) success"},
           Case{kEng17, &Table::PALSysio_DVLSetScanPower, 0, "set power 00",
                "PALSysio_SetScanPower( 0 ) success"},
           Case{kEng17, &Table::PALSysio_SetScanFlashEnable, 5, "set download 01",
                "ScanSetOperationalMode( 0 ) success"},
           Case{kEng13, &Table::PALSysio_SetScanFlashEnable, 0, "set download 00",
                "ScanSetOperationalMode( 1 ) success"},
       }) {
    Fit(test.code);
    Start();
    EXPECT_EQ((exports().*test.set)(test.argument), S_OK);
    const Lines lines = TraceLines();
    EXPECT_TRUE(std::ranges::count(lines, test.line + "\\r\\n")) << test.line;
    EXPECT_EQ(TakeSent(), Lines{test.sent});
    exports().PALSysio_Close();
  }
}

TEST_F(Scanner, TracesASessionOfAnEngineOnTheSpiClock) {
  Fit(kEng14);
  process = std::make_unique<sim::Process>(device);
  exports().PALSysio_Open();
  exports().PALSysio_SetScanTrigger(1);
  exports().PALSysio_SetScanFlashEnable(9);
  Control(4);
  device.PlanFault({.call = "DeviceIoControl", .from_then_on = true, .error = 21});
  EXPECT_EQ(exports().PALSysio_SetScanTrigger(0), E_FAIL);
  EXPECT_EQ(exports().PALSysio_SetScanFlashEnable(0), E_FAIL);
  EXPECT_EQ(exports().PALSysio_DVLSetScanPower(1), E_FAIL);
  EXPECT_EQ(Control(PAL_SCANNER_IDLE), E_FAIL);
  exports().PALSysio_Close();
  Lines lines = ScannerLines();
  ASSERT_GE(lines.size(), 3U);
  // The handle differs from run to run.
  EXPECT_TRUE(lines[2].starts_with("0x43F10000 Exit PALSysio_Open g_hOEMScanDLL: 0x"));
  EXPECT_TRUE(lines[2].ends_with(", hr: 0x0\\r\\n")) << lines[2];
  lines.erase(lines.begin() + 2);
  EXPECT_EQ(lines, (Lines{"0x43F10000 Entry PALSysio_Open\\r\\n",
                          "0x43F10000 ENG14 - PALSysio_Open. PALSysio_SetScanTrigger(TRUE)\\r\\n",
                          "0x43F10000 PALSysio_SetScanTrigger SPIClk line\\r\\n",
                          "0x43F10000 PALSysio_SetScanTrigger( fTriggerOn:1 ) success\\r\\n",
                          "0x43F10000 Enter PALSysio_SetScanFlashEnable: fDownloadEnable:9\\r\\n",
                          "0x43F10000 ScanSetOperationalMode( 0 ) success\\r\\n",
                          "0x43F10000 Exit PALSysio_SetScanFlashEnable hr:\\r\\n",
                          "0xC3F10000 Invalid PAL_SCAN_POWER_CONTROL_E parameter value of 4\\r\\n",
                          "0x43F10000 PALSysio_SetScanTrigger SPIClk line\\r\\n",
                          "0xC3F10000 PALSysio_SetScanTrigger( fTriggerOn:0 ) err: 21\\r\\n",
                          "0x43F10000 Enter PALSysio_SetScanFlashEnable: fDownloadEnable:0\\r\\n",
                          "0xC3F10000 ScanSetOperationalMode( 1 ) err: 21\\r\\n",
                          "0x43F10000 Exit PALSysio_SetScanFlashEnable hr:\\r\\n",
                          "0xC3F10000 PALSysio_SetScanPower(1 ) err: 21\\r\\n",
                          "0x43F10000 PALSysio_ControlScanPower: PAL_SCANNER_IDLE\\r\\n",
                          "0xC3F10000 ScanSetEnable( 0 ) err: 21\\r\\n",
                          "0x43F10000 PALSysio_Close\\r\\n"}));
}

TEST_F(Scanner, TracesTheBringUpAndThePowersSteps) {
  struct Case {
    BYTE code;
    Lines bring_up, down, up;  // without their category
  };
  const std::string up = "PALSysio_ControlScanPower: PAL_SCANNER_POWER_UP";
  const std::string down = "PALSysio_ControlScanPower: PAL_SCANNER_POWER_DOWN";
  const std::string power_on = "PALSysio_SetScanPower( 1 ) success";
  const std::string power_off = "PALSysio_SetScanPower( 0 ) success";
  const std::string enabled = "ScanSetEnable( 1 ) success";
  const std::string disabled = "ScanSetEnable( 0 ) success";
  const std::string entry = "Entry PALSysio_InternalScannerInterfaceInit";
  const std::string normal = "ScanSetOperationalMode( 1 ) success";
  const std::string exit = "Exit PALSysio_InternalScannerInterfaceInit";
  for (const Case& test : {
           Case{kEng17,
                {entry, "Internal DevType: 34", normal, up, power_on, enabled, exit},
                {down, power_off, disabled},
                {up, power_on, enabled}},
           Case{kEng13,
                {entry, "Internal DevType: 38", "Got camera mutex.", normal,
                 "PALSysio_SetScanTrigger SPIClk line",
                 "PALSysio_SetScanTrigger( fTriggerOn:0 ) success", up, enabled, power_on, exit},
                {down, disabled, power_off},
                {up, enabled, power_on}},
       }) {
    Fit(test.code);
    Start();
    const auto expect_lines = [&](Lines lines) {
      for (std::string& line : lines) line.insert(0, "0x43F10000 ").append("\\r\\n");
      EXPECT_EQ(ScannerLines(), lines);
      device.journal().Clear();
    };
    EXPECT_EQ(exports().PALSysio_InternalScannerInterfaceInit(), S_OK);
    expect_lines(test.bring_up);
    EXPECT_EQ(Control(PAL_SCANNER_POWER_DOWN), S_OK);
    expect_lines(test.down);
    EXPECT_EQ(Control(PAL_SCANNER_POWER_UP), S_OK);
    expect_lines(test.up);
    exports().PALSysio_Close();
  }
}

TEST_F(Scanner, FailsEveryOperationWithoutADriver) {
  process = std::make_unique<sim::Process>(device);
  EXPECT_EQ(exports().PALSysio_SetScanTrigger(1), E_FAIL) << "not opened yet";
  EXPECT_EQ(exports().PALSysio_Close(), S_OK);
  EXPECT_EQ(exports().PALSysio_Open(), S_OK);
  EXPECT_EQ(exports().PALSysio_SetScanTrigger(1), E_FAIL);
  EXPECT_EQ(exports().PALSysio_SetScanEnable(1), E_FAIL);
  EXPECT_EQ(exports().PALSysio_SetScanFlashEnable(1), E_FAIL);
  EXPECT_EQ(exports().PALSysio_DVLSetScanPower(1), E_FAIL);
  for (const DWORD mode : {PAL_SCANNER_POWER_DOWN, PAL_SCANNER_POWER_UP, PAL_SCANNER_IDLE}) {
    EXPECT_EQ(Control(mode), E_FAIL);
  }
  EXPECT_EQ(device.calls("DeviceIoControl"), 0U);
  EXPECT_EQ(process->new_handles(), 0U);
  EXPECT_EQ(TraceLines("PALSysio_Init()"),
            Lines{"PALSysio_Init() CreateFile( SCD1: )error: 0x37\\r\\n"});
  EXPECT_EQ(TraceLines("Exit PALSysio_Open"),
            Lines{"Exit PALSysio_Open g_hOEMScanDLL: 0xffffffff, hr: 0x0\\r\\n"});
  EXPECT_EQ(TraceLines("PALSysio_SetScanPower(").back(), "PALSysio_SetScanPower(1 ) err: 6\\r\\n");
}

TEST_F(Scanner, HasOneHandleHoweverOftenItIsOpened) {
  Fit(kEng17);
  Start();
  EXPECT_EQ(exports().PALSysio_Open(), S_OK);
  EXPECT_EQ(process->new_handles(), 1U);
  EXPECT_EQ(exports().PALSysio_SetScanEnable(1), S_OK) << "the driver has one user at a time";

  sim::Process other(device, "other.exe");
  EXPECT_EQ(other.exports().PALSysio_Open(), S_OK);
  EXPECT_EQ(TraceLines("PALSysio_Init()"),
            Lines{"PALSysio_Init() CreateFile( SCD1: )error: 0x20\\r\\n"});
  EXPECT_EQ(other.exports().PALSysio_SetScanEnable(0), E_FAIL);

  device.PlanFault({.call = "CreateFileW"});
  EXPECT_EQ(exports().PALSysio_Open(), S_OK);
  EXPECT_EQ(process->new_handles(), 0U) << "the old handle went, a new one did not come";
  EXPECT_EQ(exports().PALSysio_SetScanEnable(1), E_FAIL);
  EXPECT_EQ(exports().PALSysio_Open(), S_OK);
  EXPECT_EQ(exports().PALSysio_Close(), S_OK);
  EXPECT_EQ(exports().PALSysio_Close(), S_OK);
  EXPECT_EQ(process->new_handles(), 0U);
}

TEST_F(Scanner, BringsAnEngineOnTheSpiClockAloneUpUnderTheMutex) {
  const std::string mutex = kMutexName;
  const Lines on_clock{mutex + " taken", "set download 00", "set SPI clock 01",
                       "enable 01",      "set power 01",    mutex + " released"};
  for (const auto& [code, expected] :
       {std::pair{kEng17, Lines{"set download 00", "set power 01", "enable 01"}},
        {kEng14, on_clock},
        {kEng13, on_clock}}) {
    Fit(code);
    Start();
    EXPECT_EQ(exports().PALSysio_InternalScannerInterfaceInit(), S_OK);
    Lines order;
    for (const sim::JournalEntry& entry : device.journal().entries()) {
      const std::string& text = entry.text;
      if (entry.effect == sim::Effect::kMutex) order.push_back(text);
      if (text.ends_with(" 00 00 00")) order.push_back(text.substr(6, text.size() - 15));
    }
    EXPECT_EQ(order, expected);
    EXPECT_EQ(process->new_handles(), 1U) << "the driver's alone";
    exports().PALSysio_Close();
  }
}

// The power counts as on, so that a later step up only enables: kept so.
TEST_F(Scanner, BringUpCountsPowerAsOnWhateverTheDriverSays) {
  for (const BYTE code : {kEng17, kEng14}) {
    for (const std::string failing : {"set download", "set SPI clock", "enable", "set power", ""}) {
      Fit(code);
      Start();
      device.PlanFault({.call = "DeviceIoControl", .on = failing, .from_then_on = failing.empty()});
      const unsigned before = device.calls("DeviceIoControl");
      EXPECT_EQ(exports().PALSysio_InternalScannerInterfaceInit(), S_OK);
      EXPECT_EQ(device.calls("DeviceIoControl") - before, code == kEng17 ? 3U : 4U);
      device.ClearFaults();
      device.journal().Clear();
      EXPECT_EQ(Control(PAL_SCANNER_POWER_UP), S_OK);
      EXPECT_EQ(TakeSent(), Lines{"enable 01"});
      exports().PALSysio_Close();
    }
  }
}

TEST_F(Scanner, GoesOnWithoutTheMutex) {
  struct Case {
    DWORD held_ms;
    std::string failing;  // a call; empty: none
    HRESULT result;
    std::string line;
    std::uint64_t takes_ms;
    bool is_released;
  };
  const std::string got = "0x43F10000 Got camera mutex.\\r\\n";
  const std::string timeout = "0xC3F10000 Camera mutex timeout.\\r\\n";
  for (const Case& test : {
           Case{59999, "", S_OK, got, 59999, true},
           Case{60001, "", E_FAIL, timeout, 60000, false},
           Case{0, "CreateMutexW", S_OK, got, 0, false},
           Case{0, "WaitForSingleObject", S_OK, got, 0, false},
       }) {
    Fit(kEng13);
    Start();
    sim::Process camera(device, "camera.exe");
    sim::Thread holder = camera.Start([&] { HoldMutex(test.held_ms); });
    device.Advance(0);
    if (!test.failing.empty()) device.PlanFault({.call = test.failing});
    device.journal().Clear();
    const std::uint64_t start = device.now_ms();
    EXPECT_EQ(exports().PALSysio_InternalScannerInterfaceInit(), test.result);
    EXPECT_EQ(device.now_ms() - start, test.takes_ms);
    const Lines lines = CategorisedLines();
    EXPECT_EQ(std::ranges::count(lines, test.line), 1) << test.line;
    EXPECT_EQ(lines.back(), "0x43F10000 Exit PALSysio_InternalScannerInterfaceInit\\r\\n");
    Lines releases;
    for (const sim::JournalEntry& entry : device.journal().entries()) {
      if (entry.process_id == process->id() && entry.text.ends_with("released")) {
        releases.push_back(entry.text);
      }
    }
    EXPECT_EQ(releases.size(), test.is_released ? 1U : 0U);
    EXPECT_EQ(TakeSent().size(), 4U);
    EXPECT_EQ(process->new_handles(), 1U);
    EXPECT_TRUE(holder.Join());
    exports().PALSysio_Close();
  }
}

TEST_F(Scanner, TakesAMutexOverFromACameraThatDied) {
  Fit(kEng13);
  Start();
  sim::Process camera(device, "camera.exe");
  camera.Start([] { HoldMutex(INFINITE - 1); });
  device.Advance(0);
  // The name lives on with a handle of another.
  HANDLE other = nullptr;
  process->Run([&] { other = CreateMutexW(nullptr, FALSE, TEXT("DCEDRIVER_INIT_SEPARATOR")); });
  camera.Kill();
  EXPECT_EQ(exports().PALSysio_InternalScannerInterfaceInit(), S_OK);
  EXPECT_EQ(TraceLines("Got camera"), Lines{"Got camera mutex.\\r\\n"});
  process->Run([&] {
    EXPECT_EQ(WaitForSingleObject(other, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(other));
    EXPECT_EQ(ReleaseMutex(other), FALSE) << "the bring-up released what it took";
    CloseHandle(other);
  });
}

TEST_F(Scanner, AnswersTheBaudRates) {
  process = std::make_unique<sim::Process>(device);
  DWORD minimum = 1;
  DWORD maximum = 2;
  EXPECT_EQ(exports().PALSysio_GetBaudRateRange(0, nullptr, &maximum), E_FAIL);
  EXPECT_EQ(exports().PALSysio_GetBaudRateRange(0, &minimum, nullptr), E_FAIL);
  EXPECT_EQ(minimum, 1U);
  EXPECT_EQ(maximum, 2U);
  EXPECT_EQ(exports().PALSysio_GetBaudRateRange(99, &minimum, &maximum), S_OK);
  EXPECT_EQ(minimum, 1200U);
  EXPECT_EQ(maximum, 460800U);
}

TEST(ScannerDescription, KeepsTheEngineFromRunToRun) {
  const TemporaryFolder folder;
  folder.Write("device.toml", "name = \"x\"\n[scanner]\npower = true\ntrigger = true\n");
  struct Run {
    DWORD mode;
    sim::ScanEngineState before;
  };
  for (const Run& run : {Run{PAL_SCANNER_POWER_DOWN, {true, false, false, true}},
                         Run{PAL_SCANNER_POWER_UP, {false, false, false, true}},
                         Run{PAL_SCANNER_POWER_UP, {true, true, false, true}}}) {
    sim::Device device;
    sim::LoadDevice(device, folder.path());
    EXPECT_EQ(sim::FindScanDriver(device.hardware())->state(), run.before);
    sim::Process process(device);
    process.exports().PALSysio_Open();
    EXPECT_EQ(process.exports().PALSysio_ControlScanPower(run.mode), S_OK);
    process.exports().PALSysio_Close();
    process.End();
    sim::SaveDevice(device, folder.path());
  }
}

}  // namespace
