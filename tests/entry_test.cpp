// The library's start and end in a process, seen from outside.
#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

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

  // Of these exports those that the library has.
  static Lines Present(const sim::Process& process, Lines names) {
    std::erase_if(names, [&](const std::string& name) { return !process.Symbol(name.c_str()); });
    return names;
  }

  static void AddOnce(Lines& names, std::string_view name) {
    if (names.empty() || names.back() != name) names.emplace_back(name);
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
  // With no object to be had each of them has something to say.
  device.PlanFault({.call = "CreateMutexW", .from_then_on = true});
  device.PlanFault({.call = "CreateEventW", .from_then_on = true});
  const sim::Process process(device);
  Lines started;
  for (const std::string& line : device.journal().Texts(sim::Effect::kTrace)) {
    const std::string name = line.substr(0, line.find(' '));
    if (name.ends_with("Init")) AddOnce(started, name);
  }
  EXPECT_EQ(started, Present(process, {"PALBEEPInit", "PALLEDInit", "PALKEYInit", "PALPWRInit"}));
}

TEST_F(Entry, EndsTheFamiliesInReverse) {
  struct OwnedObject {
    std::string_view name;
    const char* terminator;
  };
  constexpr OwnedObject kObjects[] = {{"PowerManager/ReloadActivityTimeouts", "PALPWRTerm"},
                                      {"BackLightChangeEvent", "PALPWRTerm"},
                                      {"DVLORQPAL_LED_MUTEX", "PALLEDTerm"},
                                      {"LED_ON_TIMEOUT", "PALLEDTerm"},
                                      {"DVLORQPAL_BEEP_MUTEX", "PALBEEPTerm"}};
  Lines ended;
  Lines expected;
  // A close that fails leaves its object open, which is then known by its name.
  for (unsigned close = 1;; ++close) {
    sim::Process process(device);
    expected = Present(process, {"PALPWRTerm", "PALLEDTerm", "PALBEEPTerm"});
    device.PlanFault({.call = "CloseHandle", .nth = close});
    process.End();
    device.ClearFaults();
    const Lines left = device.TakeMisuse();
    if (left.empty()) break;
    ASSERT_EQ(left.size(), 1u);
    const auto* const object = std::ranges::find_if(kObjects, [&](const OwnedObject& candidate) {
      return left.front().find(candidate.name) != std::string::npos;
    });
    ASSERT_NE(object, std::end(kObjects)) << left.front();
    AddOnce(ended, object->terminator);
  }
  EXPECT_EQ(ended, expected);
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

TEST_F(Entry, SucceedsWhateverFails) {
  for (const char* call : {"CreateMutexW", "CreateEventW", "KernelIoControl", "RegOpenKeyExW"}) {
    device.PlanFault({.call = call, .from_then_on = true});
    sim::Process process(device);
    EXPECT_EQ(Call(process, DLL_PROCESS_DETACH), TRUE) << call;
    EXPECT_EQ(Call(process, DLL_PROCESS_ATTACH), TRUE) << call;
    device.ClearFaults();
  }
}

// One function: the same address under every name, and no platform call behind it.
TEST_F(Entry, HasOneFunctionThatDoesNothing) {
  sim::Process process(device);
  const sim::Exports& exports = process.exports();
  const unsigned calls = device.calls();
  for (const sim::Export<HRESULT()>* name :
       {&exports.DllRegisterServer, &exports.DllUnregisterServer, &exports.PALSysinfo_Init,
        &exports.PALSysinfo_Term}) {
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
