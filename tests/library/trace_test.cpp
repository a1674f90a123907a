// Trace lines: the event log, the debug output, and their cost where the event log is missing.
#include "frame/trace.h"

#include <string>
#include <vector>

#include "tests/support/device_test.h"

namespace {

constexpr DWORD kCategory = 0x43F00000;
constexpr std::size_t kLineLimit = 1023;

class Trace : public DeviceTest {
 protected:
  std::vector<std::string> DebugLines() { return device.journal().Texts(sim::Effect::kDebug); }

  InternalsProcess process{device};
};

TEST_F(Trace, HandsTheFormattedLineAndItsCategoryOn) {
  process.Run([&] {
    EXPECT_EQ(process->trace(0, kCategory, "%s %ls %d 0x%x\r\n", "narrow", TEXT("wide"), -1, 0xABu),
              0u);
  });
  EXPECT_EQ(CategorisedLines(), std::vector<std::string>{"0x43F00000 narrow wide -1 0xab\\r\\n"});
  EXPECT_EQ(DebugLines(), std::vector<std::string>{});
}

TEST_F(Trace, EchoesWithALineEndOfItsOwn) {
  process.Run([&] {
    process->trace(1, kCategory, "plain");
    process->trace(1, kCategory, "ended\r\n");
  });
  EXPECT_EQ(DebugLines(), (std::vector<std::string>{"plain\\r\\n", "ended\\r\\n\\r\\n"}));
}

TEST_F(Trace, LetsTheDebugOutputInterpretAPercentAgain) {
  process.Run([&] { process->trace(1, kCategory, "%s", "100%% of %s and %n%n%n"); });
  EXPECT_EQ(TraceLines(), std::vector<std::string>{"100%% of %s and %n%n%n"});
  ASSERT_EQ(DebugLines().size(), 1u);
  EXPECT_TRUE(DebugLines()[0].starts_with("100% of ")) << DebugLines()[0];
}

TEST_F(Trace, CutsALineThatIsLongerThanItsBuffer) {
  for (const std::size_t length : {kLineLimit - 1, kLineLimit, kLineLimit + 1, 5 * kLineLimit}) {
    device.journal().Clear();
    const std::string text(length, 'x');
    process.Run([&] {
      process->trace(1, kCategory, "%s", text.c_str());
      process->sysio_trace(1, kCategory, "%s", text.c_str());
    });
    const std::string cut = text.substr(0, kLineLimit);
    EXPECT_EQ(TraceLines(), (std::vector<std::string>{cut, cut}));
    EXPECT_EQ(DebugLines().size(), 1u) << "the older variant never echoes";
  }
}

TEST_F(Trace, TriesToLoadAMissingEventLogOncePerLine) {
  device.RemoveModule("DVLEventLog.dll");
  InternalsProcess fresh(device, "fresh.exe");
  fresh.Run([&] {
    for (int line = 0; line < 3; ++line) fresh->trace(1, kCategory, "line");
  });
  EXPECT_EQ(Texts(sim::Effect::kModule), std::vector<std::string>(3, "DVLEventlog.dll not found"));
  EXPECT_EQ(DebugLines(), std::vector<std::string>(3, "line\\r\\n"));
}

TEST_F(Trace, FreesAnEventLogWithoutItsEntryAndTriesAgain) {
  device.InstallModule({"DVLEventLog.dll", {}});
  InternalsProcess fresh(device, "fresh.exe");
  const unsigned loads = device.calls("LoadLibraryW");
  const unsigned frees = device.calls("FreeLibrary");
  fresh.Run([&] {
    fresh->trace(0, kCategory, "lost");
    fresh->trace(0, kCategory, "lost too");
  });
  EXPECT_EQ(device.calls("FreeLibrary") - frees, 2u) << "the start left one";
  for (const sim::Module& module : sim::Device().modules()) device.InstallModule(module);
  fresh.Run([&] {
    fresh->trace(0, kCategory, "found");
    fresh->trace(0, kCategory, "kept");
  });
  EXPECT_EQ(TraceLines(), (std::vector<std::string>{"found", "kept"}));
  EXPECT_EQ(device.calls("LoadLibraryW") - loads, 3u);
}

TEST_F(Trace, TheOlderVariantLooksOnceAndNeverFrees) {
  device.InstallModule({"DVLEventLog.dll", {}});
  InternalsProcess fresh(device, "fresh.exe");
  const unsigned loads = device.calls("LoadLibraryW");
  const unsigned lookups = device.calls("GetProcAddressW");
  const unsigned frees = device.calls("FreeLibrary");
  fresh.Run([&] {
    fresh->sysio_trace(0, kCategory, "lost");
    fresh->sysio_trace(0, kCategory, "lost too");
  });
  EXPECT_EQ(device.calls("LoadLibraryW") - loads, 1u);
  EXPECT_EQ(device.calls("GetProcAddressW") - lookups, 1u);
  EXPECT_EQ(device.calls("FreeLibrary"), frees);
}

TEST_F(Trace, LeavesTheLastErrorAlone) {
  device.RemoveModule("DVLEventLog.dll");
  process.Run([&] {
    SetLastError(42);
    process->trace(1, kCategory, "line");
    process->sysio_trace(0, kCategory, "line");
    EXPECT_EQ(GetLastError(), 42u);
  });
}

DWORD WINAPI LogAndFail(DWORD /*category*/, const char* /*line*/) {
  SetLastError(ERROR_INVALID_PARAMETER);
  return 0;
}

TEST_F(Trace, LeavesTheLastErrorAloneWhereTheEventLogChangesIt) {
  auto* const entry = reinterpret_cast<int (*)()>(reinterpret_cast<void*>(&LogAndFail));
  device.InstallModule({"DVLEventLog.dll", {{"DVLLogString", entry}}});
  InternalsProcess fresh(device, "fresh.exe");
  fresh.Run([&] {
    SetLastError(42);
    fresh->trace(0, kCategory, "line");
    fresh->trace(1, kCategory, "line");
    EXPECT_EQ(GetLastError(), 42u);
    fresh->sysio_trace(0, kCategory, "line");
    EXPECT_EQ(GetLastError(), 42u);
  });
}

TEST_F(Trace, BuildsTheCategoryWordOfEachSeverity) {
  using pal::Severity;
  EXPECT_EQ(pal::TraceCategory(pal::Facility::kBeeper, Severity::kPlain), 0x03EB0000u);
  EXPECT_EQ(pal::TraceCategory(pal::Facility::kBeeper, Severity::kInfo), 0x43EB0000u);
  EXPECT_EQ(pal::TraceCategory(pal::Facility::kBeeper, Severity::kWarning), 0x83EB0000u);
  EXPECT_EQ(pal::TraceCategory(pal::Facility::kBeeper, Severity::kError), 0xC3EB0000u);
}

}  // namespace
