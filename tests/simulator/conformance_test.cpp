// What the simulated device answers to the questions that palcheck.exe puts to a handheld.
#include <sstream>
#include <string>

#include "platform/conformance/queries.h"
#include "platform/conformance/report.h"
#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/kernel/registry_text.h"
#include "tests/support/device_test.h"

namespace {

constexpr const char* kAnswers = R"(
palcheck: does not restart the device, makes no sound above the lowest volume, and leaves nothing behind but this file
registry: create a key again, in other case = 0 disposition 2
registry: open a path with a leading backslash = 0 [chosen]
registry: open a path with a doubled backslash = 0 [chosen]
registry: open a missing key = 2
registry: open without a path = 0 [chosen]
registry: the last error after a failed open = 2 last error 2 [chosen]
registry: set null data of 0 bytes = 0 [chosen]
registry: query in other case = 0 bytes 8
registry: query into 6 of 8 bytes = 234 bytes 8
registry: query the size alone = 0 bytes 8
registry: query a missing value = 2 bytes 64
registry: query the unnamed value = 2 bytes 64
registry: query without a size = 87 [chosen]
registry: size of a text set without terminator = 0 bytes 6 [chosen]
registry: order of values = 0 zText units 5 0 aNumber units 7 259 [chosen]
registry: order of keys = 0 zebra 0 ant 259 [chosen]
registry: enumerate names without room for their ends = value 234 key 234
registry: delete a key with subkeys = 0 left 0
registry: delete a key that is open = 5 [chosen]
registry: write through query access = 0
registry: delete a value twice = 0 2
registry: flush = 0
registry: 16 levels = 0
registry: 17 levels = 87 [chosen]
registry: a key's name of 255 letters = 0
registry: a key's name of 256 letters = 87 [chosen]
file: open a missing one = error 2
file: open one in a missing folder = error 2 [chosen]
file: create one in a missing folder = 0 error 3
file: open this report, which is open without sharing = error 32
file: attributes = ffffffff error 2 folder 10 folder 10
driver: open a missing one = error 55 [chosen]
mutex: create twice = error 0 error 183 owned 0
mutex: release without owning = 0 error 288
mutex: take twice, release three times = 0 0 1 1 0
mutex: its owner ends = 128 then 0
event: create twice, otherwise the second time = error 183 0 258
event: wait, set, wait twice, pulse, wait = 258 set 1 0 258 pulse 1 258
event: modify with 9 = 0 [chosen]
names: a mutex with the name of an event = 1 error 0
module: load a missing one = 0 error 126 0 error 126
module: load by two spellings = same 1
module: load the same file name from a folder without it = same 1
module: find a missing entry = 0 error 127
text: _vsnprintf of 8-bit and wide text = 6 'ab cd|'
text: _vsnprintf of a text that just fits = 8 '12345678.'
text: _vsnprintf of a text that does not fit = -1 '12345678.'
text: _vsnprintf of a padded number = 8 '0000ABCD.'
text: conversion of other letters = 2 61 e9 3 3f [chosen]
system: platform type = 1 some 1 exact 1 short 0 error 122 [chosen]
system: OEM information = 1 some 1 exact 1 short 0 error 122 [chosen]
system: version = 1 platform 3 major 5
system: the process has a number = 1
sound: play a missing file = 0
sound: stop where none plays = 1 [chosen]
sound: read the gain = 0 [chosen]
LED: set one that is not there = 0 [chosen]
LED: ask for one that is not there = 0 [chosen]
cryptography: a missing key set = 0 error 80090016
library: load DVLORQPAL.dll = error 0
palcheck: done
)";

std::string ReportOf(sim::Device& device) {
  sim::Process process(device, "palcheck.exe");
  process.Run([] { EXPECT_TRUE(conformance::WriteReport()); });
  const auto* const bytes = device.files().Read("\\palcheck.txt");
  return bytes == nullptr ? "" : std::string(bytes->begin(), bytes->end());
}

// Some rows ask what a mistake is answered: it is recorded as one.
TEST(Conformance, SimulatedDeviceAnswersAsItIsMeantTo) {
  sim::Device device;
  sim::LoadDevice(device, PROJECT_DIR "/devices/rm21");
  std::istringstream report(ReportOf(device));
  std::string answers = "\n";
  std::size_t queries = 0;
  for (std::string line; std::getline(report, line);) {
    EXPECT_TRUE(line.ends_with('\r')) << line;
    line.pop_back();
    EXPECT_EQ(line.find("not exported"), std::string::npos) << line;
    if (line.find(": ") == std::string::npos) {
      ++queries;
    } else {
      answers += line + "\n";
    }
  }
  EXPECT_EQ(answers, kAnswers);
  EXPECT_EQ(queries, conformance::Queries().size());
}

TEST(Conformance, LeavesEveryDeviceAsItWas) {
  for (const char* sample : {"greywing", "rm21", "rm23", "rx"}) {
    SCOPED_TRACE(sample);
    sim::Device device;
    sim::LoadDevice(device, std::string(PROJECT_DIR "/devices/") + sample);
    device.set_library_path(std::string(sim::kLibraryPath));
    { const sim::Process first(device); }  // the library repairs the buttons at its first attach
    device.journal().Clear();
    const std::string registry = sim::ExportRegistryText(device.registry());
    const auto volume = device.hardware().audio.levels.volume;
    EXPECT_TRUE(ReportOf(device).ends_with("\r\npalcheck: done\r\n"));
    EXPECT_EQ(sim::ExportRegistryText(device.registry()), registry);
    EXPECT_EQ(device.hardware().audio.levels.volume, volume);
    for (const auto effect :
         {sim::Effect::kRegistry, sim::Effect::kFile, sim::Effect::kAudio, sim::Effect::kLed,
          sim::Effect::kVibration, sim::Effect::kDisplay, sim::Effect::kPower}) {
      for (const std::string& text : device.journal().Texts(effect)) {
        const bool own = text.starts_with("HKEY_CURRENT_USER\\DVLORQPALcheck") ||
                         text.starts_with("\\palcheck.txt") || text.starts_with("volume");
        EXPECT_TRUE(own) << text;
      }
    }
  }
}

}  // namespace
