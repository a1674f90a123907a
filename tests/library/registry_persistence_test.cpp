// Making the registry survive a cold boot, and the placeholders beside it.
#include <array>
#include <string>
#include <vector>

#include "platform/sim/programs/flush_service.h"
#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;

class RegistryPersistence : public DeviceTest {
 protected:
  HRESULT Persist() {
    device.journal().Clear();
    return process.exports().PALMFGOpt_PersistRegistry();
  }
  Lines Flushes() { return device.journal().Texts(sim::Effect::kRegistry); }

  sim::Process process{device, "provision.exe"};
};

const Lines kAllFlushed = {"HKEY_LOCAL_MACHINE flushed", "HKEY_CURRENT_USER flushed",
                           "HKEY_CLASSES_ROOT flushed", "HKEY_USERS flushed"};

TEST_F(RegistryPersistence, FlushesTheFourRootsInOrder) {
  process.Run([] { SetLastError(ERROR_ALREADY_EXISTS); });  // left by an earlier call
  EXPECT_EQ(Persist(), S_OK);
  EXPECT_EQ(Flushes(), kAllFlushed);
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0x43F00000 PALMFGOpt_PersistRegistry - RegFlushKey(HKLM)\\r\\n",
                   "0xC3F00000 PALMFGOpt_PersistRegistry - RegFlushKey(HKCU)\\r\\n",
                   "0x43F00000 PALMFGOpt_PersistRegistry - RegFlushKey(HKCR)\\r\\n",
                   "0x43F00000 PALMFGOpt_PersistRegistry - RegFlushKey(HKU)\\r\\n"}));
  EXPECT_EQ(device.journal().Texts(sim::Effect::kEvent), Lines{});
  EXPECT_EQ(Persist(), S_OK) << "its own event is gone again";
  EXPECT_EQ(Flushes(), kAllFlushed);
}

TEST_F(RegistryPersistence, GoesOnBehindARootThatCannotBeFlushed) {
  const std::array roots{"HKLM", "HKCU", "HKCR", "HKU"};
  const std::array names{"LOCAL_MACHINE", "CURRENT_USER", "CLASSES_ROOT", "USERS"};
  for (unsigned failing = 0; failing < roots.size(); ++failing) {
    device.ClearFaults();
    device.PlanFault({.call = "RegFlushKey", .on = names[failing], .error = 5});
    EXPECT_EQ(Persist(), E_FAIL) << roots[failing];
    Lines expected = kAllFlushed;
    expected.erase(expected.begin() + failing);
    EXPECT_EQ(Flushes(), expected);
    Lines errors = TraceLines("PALMFGOpt_PersistRegistry - ERROR ");
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_EQ(errors[0], "PALMFGOpt_PersistRegistry - ERROR RegFlushKey(" +
                             std::string(roots[failing]) + ").  win32err:0x5\\r\\n");
    EXPECT_EQ(process.new_handles(), 0u);
  }
}

TEST_F(RegistryPersistence, LeavesTheFlushToAServiceThatHoldsTheEvent) {
  device.StartProgram(sim::FlushService());
  EXPECT_EQ(Persist(), S_OK);
  EXPECT_EQ(Flushes(), Lines{});
  EXPECT_EQ(device.journal().Texts(sim::Effect::kEvent), Lines{"DVLRegFlushKeyAll set"});
  EXPECT_EQ(CategorisedLines(), Lines{"0x43F00000 PALMFGOpt_PersistRegistry - SetEvent(D)\\r\\n"});
  EXPECT_EQ(device.journal().Texts(sim::Effect::kDebug).size(), 1u);
  device.RunUntilIdle();
  EXPECT_EQ(Flushes(), kAllFlushed) << "the service's";

  device.PlanFault({.call = "EventModify", .error = 31});
  EXPECT_EQ(Persist(), E_FAIL);
  EXPECT_EQ(Flushes(), Lines{});
  EXPECT_EQ(CategorisedLines().back(),
            "0xC3F00000 PALMFGOpt_PersistRegistry - ERROR SetEvent(D).  win32err:0x1f\\r\\n");
  device.RunUntilIdle();
  EXPECT_EQ(Flushes(), Lines{}) << "it was not woken";
}

TEST_F(RegistryPersistence, FailsWithoutItsEvent) {
  device.PlanFault({.call = "CreateEventW", .error = 8});
  EXPECT_EQ(Persist(), E_FAIL);
  EXPECT_EQ(Flushes(), Lines{});
  EXPECT_EQ(CategorisedLines(),
            Lines{"0xC3F00000 PALMFGOpt_PersistRegistry - ERROR CreateEvent(D) win32err:0x8"});
}

TEST_F(RegistryPersistence, PlaceholdersSayThatTheyAreNone) {
  EXPECT_EQ(process.exports().PALMFGOpt_RestoreDefaults(), E_FAIL);
  EXPECT_EQ(process.exports().PALMFGOpt_GetConfigString(0), E_FAIL);
  EXPECT_EQ(process.exports().PALMFGOpt_GetConfigString(2), E_FAIL);
  EXPECT_EQ(process.exports().PALMFGOpt_GetConfigString(1), E_FAIL);
  EXPECT_EQ(CategorisedLines(),
            (Lines{"0x43F00000 PALMFGOpt_RestoreDefaults - Placeholder",
                   "0x83F00000 PALMFGOpt_GetConfigString - Not yet implemented for P7. Returned "
                   "E_FAIL"}));
}

}  // namespace
