// The library's start and end in a process, seen from outside.
#include <string>
#include <vector>

#include "platform/sim/kernel/kernel.h"
#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;

class Entry : public DeviceTest {
 protected:
  // Runs the entry once more; the loader did so when the process began.
  static BOOL Call(sim::Process& process, DWORD reason) {
    using EntryPoint = BOOL (*)(HANDLE module, DWORD reason, void* reserved);
    const auto entry = reinterpret_cast<EntryPoint>(process.Symbol("DllMain"));
    BOOL answer = FALSE;
    process.Run([&] { answer = entry(OwnModule(), reason, nullptr); });
    return answer;
  }

 private:
  static HMODULE OwnModule() {
    const HMODULE module = LoadLibraryW(TEXT(R"(\Program Files\Dravonel\DVLORQPAL.dll)"));
    EXPECT_NE(module, nullptr);
    FreeLibrary(module);
    return module;
  }
};

// The display family does nothing that is seen at either end.
TEST_F(Entry, StartsTheFamiliesInOrder) {
  // With no object to be had each of them has something to say, and says it each time.
  device.PlanFault({.call = "CreateMutexW", .from_then_on = true});
  device.PlanFault({.call = "CreateEventW", .from_then_on = true});
  const sim::Process process(device);
  Lines started;
  for (const std::string& line : device.journal().Texts(sim::Effect::kTrace)) {
    const std::string name = line.substr(0, line.find(' '));
    if (name.ends_with("Init")) started.push_back(name);
  }
  EXPECT_EQ(started, (Lines{"PALBEEPInit", "PALLEDInit", "PALKEYInit", "PALPWRInit"}));
}

// The keypad family has nothing to close.
TEST_F(Entry, EndsTheFamiliesInReverse) {
  const Lines closed = {"PowerManager/ReloadActivityTimeouts", "BackLightChangeEvent",
                        "DVLORQPAL_LED_MUTEX", "LED_ON_TIMEOUT", "DVLORQPAL_BEEP_MUTEX"};
  const auto is_open = [this](const std::string& name) {
    const std::u16string text = sim::ToUtf16(name);
    const auto event = device.kernel().events.find(text);
    const auto mutex = device.kernel().mutexes.find(text);
    return (event != device.kernel().events.end() && !event->second.expired()) ||
           (mutex != device.kernel().mutexes.end() && !mutex->second.expired());
  };
  std::vector<bool> open;
  device.journal().set_listener([&](const sim::JournalEntry& entry) {
    if (!entry.text.ends_with(" killed")) return;
    for (const std::string& name : closed) open.push_back(is_open(name));
  });
  // Ended before each of its closes in turn, a process has closed those before it.
  for (std::size_t index = 0; index < closed.size(); ++index) {
    sim::Process process(device);
    device.PlanFault(
        {.call = "CloseHandle", .nth = static_cast<unsigned>(index + 1), .kill = true});
    open.clear();
    EXPECT_THROW(process.End(), sim::ProcessKilled);
    device.ClearFaults();
    ASSERT_EQ(open.size(), closed.size());
    for (std::size_t at = 0; at < closed.size(); ++at) {
      EXPECT_EQ(open[at], at >= index) << closed[at] << " at close " << index;
    }
  }
  device.journal().set_listener(nullptr);
  sim::Process process(device);
  device.journal().Clear();
  const unsigned closes = device.calls("CloseHandle");
  process.End();
  EXPECT_EQ(device.calls("CloseHandle"), closes + closed.size());
  EXPECT_EQ(device.journal().Texts(sim::Effect::kTrace), Lines())
      << "the LEDs and the beeper miss their mutex when they are ended again";
}

TEST_F(Entry, LeavesNothingBehindHoweverOftenItRuns) {
  device.journal().set_keeps_entries(false);
  sim::Process process(device);
  const unsigned held = process.open_handles();
  for (int round = 0; round < 1000; ++round) {
    ASSERT_EQ(Call(process, DLL_PROCESS_DETACH), TRUE);
    ASSERT_EQ(process.open_handles(), 0u) << "after " << round;
    ASSERT_EQ(process.heap_blocks(), 0u) << "after " << round;
    ASSERT_EQ(Call(process, DLL_PROCESS_ATTACH), TRUE);
    ASSERT_EQ(process.open_handles(), held) << "after " << round;
  }
}

TEST_F(Entry, HasNothingToDoForThreads) {
  sim::Process process(device);
  const unsigned held = process.open_handles();
  Call(process, DLL_THREAD_ATTACH);
  const std::size_t entries = device.journal().entries().size();
  const unsigned calls = device.calls();
  constexpr DWORD kUnknownReason = 4;
  for (const DWORD reason : {DLL_THREAD_ATTACH, DLL_THREAD_DETACH, kUnknownReason}) {
    EXPECT_EQ(Call(process, reason), TRUE);
  }
  EXPECT_EQ(device.calls(), calls + 6) << "loading and freeing the module by the test itself";
  EXPECT_EQ(device.journal().entries().size(), entries);
  EXPECT_EQ(process.open_handles(), held);
}

// One function: the same address under every name, and no platform call behind it.
TEST_F(Entry, HasOneFunctionThatDoesNothing) {
  sim::Process process(device);
  const sim::Exports& exports = process.exports();
  const unsigned calls = device.calls();
  for (const sim::Export<HRESULT()>* name :
       {&exports.DllRegisterServer, &exports.DllUnregisterServer, &exports.PALCOMxPwr_Init,
        &exports.PALCOMxPwr_Term, &exports.PALPWRGetBatteryLevel,
        &exports.PALPWRGetBatteryPercentRemaining, &exports.PALSysinfo_Init,
        &exports.PALSysinfo_Term, &exports.PALSysio_Init, &exports.PALSysio_Term,
        &exports.PALVIBInit}) {
    EXPECT_EQ((*name)(), S_OK);
    EXPECT_EQ(name->address(), exports.DllRegisterServer.address());
  }
  EXPECT_EQ(device.calls(), calls);
}

TEST_F(Entry, TheMultiplexerIsNotImplemented) {
  sim::Process process(device);
  EXPECT_EQ(process.exports().PALUARTGetMuxMode(), E_NOTIMPL);
  EXPECT_EQ(process.exports().PALUARTSetMuxMode(), E_NOTIMPL);
}

TEST_F(Entry, LogsItsVersion) {
  sim::Process process(device);
  EXPECT_EQ(process.exports().PALVER_LogVersion(), S_OK);
  EXPECT_EQ(CategorisedLines().back(), "0x442F0000 Loaded PAL version: 0.0.0.0\\r\\n");
  device.RemoveModule("DVLEventLog.dll");
  sim::Process silent(device);
  EXPECT_EQ(silent.exports().PALVER_LogVersion(), S_OK);
}

}  // namespace
