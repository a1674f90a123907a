// A device's folder under many writers, broken disks, interrupted commands and other people's
// files.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/sim/folder_change.h"
#include "tests/support/command_line.h"
#include "tests/support/temporary_folder.h"
#include "tools/palsim/device_lock.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kRead = "call PALKEYGetNumButtons out";
constexpr const char* kChange = "call PALMFGOpt_ConfigStoreRegUpdate";
constexpr const char* kRunAnew = "run --new " PROJECT_DIR "/scenarios/good-read.scenario";

class DeviceCommands : public ::testing::Test {
 protected:
  int Run(const std::string& arguments) {
    const CommandResult result = RunTool(fmt::format("palsim {} {}", unit.string(), arguments));
    output = result.output;
    return result.status;
  }
  // With host_faults: `fault` is "FAULT_AT=3".
  int RunFaulty(const std::string& fault, const std::string& arguments) {
    const std::string log = (folder.path() / "output").string();
    const std::string command =
        fmt::format("{} LD_PRELOAD={} {}/palsim {} {} >{} 2>&1; exit $?", fault, HOST_FAULTS,
                    BINARY_DIR, unit.string(), arguments, log);
    const int status = WEXITSTATUS(std::system(command.c_str()));
    output = Get(log);
    return status;
  }
  [[nodiscard]] bool Printed(const std::string& text) const {
    return output.find(text) != std::string::npos;
  }
  static std::string Get(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  void Put(const std::string& name, const std::string& text) const {
    fs::create_directories((unit / name).parent_path());
    std::ofstream(unit / name, std::ios::binary) << text;
  }

  using Files = std::map<std::string, std::string>;
  // Every file and folder with its bytes; folders without any.
  [[nodiscard]] Files Everything() const {
    Files all;
    for (const auto& entry : fs::recursive_directory_iterator(unit)) {
      all[fs::relative(entry.path(), unit)] = entry.is_regular_file() ? Get(entry.path()) : "";
    }
    return all;
  }
  [[nodiscard]] std::vector<fs::file_time_type> Times() const {
    std::vector<fs::file_time_type> times{fs::last_write_time(unit)};
    for (const auto& entry : fs::recursive_directory_iterator(unit)) {
      times.push_back(fs::last_write_time(entry.path()));
    }
    return times;
  }

  TemporaryFolder folder;
  fs::path unit = folder.path() / "unit";
  std::string output;
};

TEST_F(DeviceCommands, KeepWhatEachOfManyAtATimeHasDone) {
  ASSERT_EQ(Run("new"), 0);
  const std::string calls = fmt::format(
      "for button in 0 2 3 5 6 7; do {0}/palsim {1} call --wait 60 PALKEYSetButtonAction $button 5 "
      ">/dev/null & {0}/palsim {1} info --wait 60 >/dev/null & done; wait",
      BINARY_DIR, unit.string());
  ASSERT_EQ(std::system(calls.c_str()), 0);
  ASSERT_EQ(Run("keys"), 0);
  for (const char* button : {"Handle", "Left Side Bottom", "Middle", "Left Side Top",
                             "Right Side Top", "Right Side Bottom"}) {
    EXPECT_TRUE(Printed(fmt::format("{:<18} 5 flashlight", button))) << output;
  }
  Run("journal --runs");
  EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 6) << output;

  const std::string devices = fmt::format(
      "for round in 1 2 3 4; do {0}/palsim {1} run --new --wait 60 {2} >/dev/null & done; wait",
      BINARY_DIR, unit.string(), PROJECT_DIR "/scenarios/good-read.scenario");
  ASSERT_EQ(std::system(devices.c_str()), 0);
  EXPECT_EQ(Run(kChange), 0) << output;
}

TEST_F(DeviceCommands, SayForWhomTheyWaitAndGiveUp) {
  ASSERT_EQ(Run("new"), 0);
  const auto before = Everything();
  const std::string holder = fmt::format("(process {})", getpid());
  sim::FolderLock lock(unit);
  ASSERT_TRUE(lock.Try(palsim::Use::kChange));
  for (const std::string command : {kRead, kChange, "info", "journal", "shell", "new --force"}) {
    EXPECT_EQ(Run(command + " --wait 0"), 1) << command;
    EXPECT_TRUE(Printed("unit is in use by ") && Printed(holder)) << output;
    EXPECT_TRUE(Printed("; gave up after 0 s (--wait SECONDS)\n")) << output;
  }
  EXPECT_EQ(Run("info --wait 0.6"), 1);
  EXPECT_TRUE(Printed("; waiting up to 0.6 s\n")) << output;
  EXPECT_EQ(Run("info --wait -1"), 2);
  EXPECT_EQ(Everything(), before);

  ASSERT_TRUE(lock.Try(palsim::Use::kRead));
  EXPECT_EQ(Run("info --wait 0"), 0) << "readers are not in each other's way";
  EXPECT_EQ(Run(std::string(kChange) + " --wait 0"), 1);
  std::thread reader([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    const sim::FolderLock gone = std::move(lock);
  });
  EXPECT_EQ(Run(std::string(kChange) + " --wait 60"), 0);
  EXPECT_TRUE(Printed("; waiting up to 60 s\n")) << output;
  reader.join();
}

TEST_F(DeviceCommands, ThatOnlyAskWriteNothing) {
  ASSERT_EQ(Run("new"), 0);
  ASSERT_EQ(Run(kChange), 0);
  const auto before = std::pair(Everything(), Times());
  for (const std::string command :
       {kRead, "call PALLEDInit", "info", "keys", "scan", "registry", "journal --last 3", "trace",
        "timeline", "journal --runs", "timeline --run 1"}) {
    EXPECT_EQ(RunFaulty(fmt::format("FAULT_AT=1 FAULT_ERROR={}", EROFS), command), 0)
        << command << output;
  }
  EXPECT_EQ(std::pair(Everything(), Times()), before);
  EXPECT_EQ(RunFaulty(fmt::format("FAULT_AT=1 FAULT_ERROR={}", EROFS), "call PALLEDGrLedOn"), 1);
  EXPECT_TRUE(output.find("PALLEDGrLedOn = 0x00000000 S_OK\n") != std::string::npos &&
              Printed("unit: the change cannot be saved: Read-only file system\n"))
      << output;
  EXPECT_EQ(std::pair(Everything(), Times()), before);
}

// Each command is stopped, or its disk is full, at every call that changes files.
TEST_F(DeviceCommands, LeaveTheOldDeviceOrTheNewOneWhateverEndsThem) {
  ASSERT_EQ(Run("new"), 0);
  ASSERT_EQ(Run("call PALLEDGrLedOn"), 0);
  Put("journal.log", "= run of an older version\n     0.000 p1 t1 led LED 3 on\n");
  Put("files/Windows/gone.txt", "of the old device");
  const fs::path start = folder.path() / "start";
  fs::copy(unit, start, fs::copy_options::recursive);
  const Files old_device = Everything();
  const auto reset = [&] {
    fs::remove_all(unit);
    fs::copy(start, unit, fs::copy_options::recursive);
  };
  unsigned stops = 0;
  for (const std::string command : {kChange, kRunAnew}) {
    ASSERT_EQ(RunFaulty("", command), 0) << output;
    const Files new_device = Everything();
    reset();
    for (const std::string fault : {"", " FAULT_ERROR=28"}) {
      bool was_old = false;
      for (int at = 1, status = 1; status != 0; ++at, ++stops) {
        status = RunFaulty(fmt::format("FAULT_AT={}{}", at, fault), command);
        const bool is_said = !fault.empty() && Printed(": No space left on device\n");
        ASSERT_TRUE(status == 0 || status == 137 || is_said) << status << output;
        static_cast<void>(palsim::LockDevice(unit, palsim::Use::kRead));
        fs::remove_all(unit / ".palsim-saving");  // as the next change does
        const Files now = Everything();
        ASSERT_TRUE(now == old_device || now == new_device) << command << " at " << at;
        was_old = was_old || now == old_device;
        if (now != old_device) reset();
      }
      EXPECT_TRUE(was_old) << command;
    }
  }
  EXPECT_GT(stops, 80u);
}

TEST_F(DeviceCommands, KeepWhatAUserMade) {
  ASSERT_EQ(Run("new"), 0);
  for (const char* name : {"notes.txt", "shell_history", "runs/why.txt", "old/files/a"}) {
    Put(name, "mine");
  }
  ASSERT_EQ(Run(kChange), 0);
  EXPECT_EQ(Run(kRunAnew), 0) << output;
  const auto before = Everything();
  EXPECT_EQ(RunFaulty("FAULT_AT=9 FAULT_ERROR=28", "new --force --sample rm23"), 1);
  EXPECT_EQ(Everything(), before) << output;
  EXPECT_EQ(Run("new --force --sample rm23"), 0) << output;
  EXPECT_EQ(Run("journal --clear"), 0);
  for (const char* name : {"notes.txt", "shell_history", "runs/why.txt", "old/files/a"}) {
    EXPECT_EQ(Get(unit / name), "mine") << name;
  }
  const std::string edited = "# mine\n" + Get(unit / "device.toml");
  Put("device.toml", edited);
  EXPECT_EQ(Run(kRunAnew), 2);
  EXPECT_TRUE(Printed("device.toml may have been edited; --force makes the device")) << output;
  EXPECT_EQ(Get(unit / "device.toml"), edited);
  EXPECT_EQ(Run(kRunAnew + std::string(" --force")), 0) << output;
  fs::remove(unit / ".sample");
  EXPECT_EQ(Run(kRunAnew), 2) << "of an older version: nobody knows";
  // What an older version left, and what is no device at all.
  fs::remove(unit / "device.toml");
  EXPECT_EQ(Run("info"), 1);
  EXPECT_TRUE(Printed("unit new --force' makes one\n")) << output;
  EXPECT_EQ(Run("new"), 2);
  EXPECT_EQ(Run("new --force"), 0) << output;
  for (const char* name : {"device.toml", "registry.reg"}) fs::remove(unit / name);
  EXPECT_EQ(Run("new --force"), 2);
  EXPECT_TRUE(Printed("exists and is no device; choose another folder")) << output;
}

TEST_F(DeviceCommands, KeepTheJournalInRuns) {
  ASSERT_EQ(Run("new"), 0);
  const std::string old_line = "     0.000 p1 t1 led LED 3 on\n";
  const std::string two_lines = old_line + old_line;
  Put("journal.log", fmt::format("{0}= run first\n{0}= run second\n{0}", old_line));
  for (const char* call : {"info", "call PALLEDGrLedOn", "call PALLEDGrLedOff"}) {
    EXPECT_EQ(Run("journal --run 1"), 0);
    EXPECT_EQ(output, two_lines + old_line) << "also when it has moved";
    EXPECT_EQ(Run("journal --run 1 --last 2"), 0);
    EXPECT_EQ(output, two_lines);
    EXPECT_EQ(Run("timeline --run 1"), 0);
    EXPECT_TRUE(output.starts_with("second\n")) << output;
    EXPECT_EQ(Run(call), 0);
  }
  EXPECT_FALSE(fs::exists(unit / "journal.log"));
  EXPECT_EQ(Run("journal --runs"), 0);
  EXPECT_EQ(output, "     1  \n     2  PALLEDGrLedOn \n     3  PALLEDGrLedOff \n");
  EXPECT_EQ(Run("journal --effect led --last 3"), 0);
  EXPECT_EQ(output, old_line + "     0.000 p2 t1 led LED 3 on\n     0.000 p2 t1 led LED 3 off\n");
  EXPECT_EQ(Run("journal --run 9"), 2);
  EXPECT_TRUE(Printed("unit has no run 9; ")) << output;
  Put("device.toml", "journal = { keep = \"2 runs\" }\n" + Get(unit / "device.toml"));
  EXPECT_EQ(Run("call PALLEDGrLedOn"), 0) << output;
  EXPECT_EQ(Run("journal --runs"), 0);
  EXPECT_EQ(output, "     3  PALLEDGrLedOff \n     4  PALLEDGrLedOn \n");
  std::string description = Get(unit / "device.toml");
  description.replace(description.find("2 runs"), 6, "1 run");
  Put("device.toml", description);
  EXPECT_EQ(Run("call PALLEDGrLedOff"), 0) << output;
  EXPECT_EQ(Run("journal --runs"), 0);
  EXPECT_EQ(output, "     5  PALLEDGrLedOff \n");
  EXPECT_EQ(Run("journal --clear"), 0);
  EXPECT_EQ(Run("timeline"), 2);
  EXPECT_TRUE(Printed("has no run to show")) << output;
}

TEST_F(DeviceCommands, TouchNothingThatIsTheUsers) {
  Put("runs/000001.log", "");
  Put("journal.log", "mine");
  Put("registry.reg", "[HKLM\\a]\n");
  Put(".saved/put/thesis", "other");
  Put(".saving/note", "precious");
  Put("thesis", "mine");
  const auto before = Everything();
  const std::string play = "run " PROJECT_DIR "/scenarios/good-read.scenario --new";
  for (const std::string& command : {play, std::string("new"), std::string("info")}) {
    EXPECT_NE(Run(command), 0) << command;
    EXPECT_EQ(Everything(), before) << command;
  }
  fs::remove_all(unit);
  ASSERT_EQ(Run("new"), 0);
  ASSERT_EQ(Run(kChange), 0);
  EXPECT_EQ(Run("journal --run 1 --clear"), 2);
  EXPECT_EQ(Run("journal --runs"), 0);
  EXPECT_NE(output, "");

  Put("page.writing", "mine");
  fs::create_symlink(unit / "thesis", unit / "page.writing.1");
  EXPECT_EQ(Run("timeline --html " + (unit / "page").string()), 0) << output;
  EXPECT_EQ(Get(unit / "page.writing"), "mine");
  EXPECT_FALSE(fs::exists(unit / "thesis"));
  EXPECT_TRUE(Get(unit / "page").starts_with("<!DOCTYPE html>"));
  EXPECT_FALSE(fs::exists(unit / "page.writing.2"));
}

TEST_F(DeviceCommands, WaitForADeviceThatAnotherIsMadeOf) {
  ASSERT_EQ(Run("new"), 0);
  sim::FolderLock lock(unit);
  ASSERT_TRUE(lock.Try(palsim::Use::kChange));
  const std::string other = "palsim " + (folder.path() / "other").string();
  for (const std::string command : {" new --wait 0 --sample ", " run --new --wait 0 --sample "}) {
    const std::string file =
        command.starts_with(" run") ? " " PROJECT_DIR "/scenarios/good-read.scenario" : "";
    const auto result = RunTool(other + command + unit.string() + file);
    EXPECT_EQ(result.status, 1) << command;
    EXPECT_NE(result.output.find("unit is in use by "), std::string::npos) << result.output;
  }
  std::atomic<bool> has_changed = false;
  std::thread change([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    has_changed = true;
    const sim::FolderLock gone = std::move(lock);
  });
  const auto served = RunTool("palsim serve --stdio --device " + unit.string() + " </dev/null");
  EXPECT_TRUE(has_changed) << "it was served in the middle of a change";
  change.join();
  EXPECT_EQ(served.status, 0) << served.output;
}

TEST_F(DeviceCommands, ReadNoMoreOfARunThanItsLastLines) {
  ASSERT_EQ(Run("new"), 0);
  const std::string last = "     0.000 p1 t1 led LED 3 on\n";
  Put("runs/000001.log", "= run of great length\n");
  fs::resize_file(unit / "runs/000001.log", std::uintmax_t{1} << 34);  // without room on the disk
  std::ofstream(unit / "runs/000001.log", std::ios::app) << "\n" << last;
  const std::string command =
      fmt::format("ulimit -v 1000000; {}/palsim {} journal --last 1", BINARY_DIR, unit.string());
  const std::string log = (folder.path() / "output").string();
  EXPECT_EQ(std::system(fmt::format("({}) >{} 2>&1", command, log).c_str()), 0) << Get(log);
  EXPECT_EQ(Get(log), last);
}

TEST_F(DeviceCommands, SaveTheDeviceWhenNobodyReads) {
  ASSERT_EQ(Run("new"), 0);
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  close(ends[0]);
  RunTool(
      fmt::format("palsim {} call PALLEDGrLedOn --journal 2>&1 >&{} #", unit.string(), ends[1]));
  close(ends[1]);
  EXPECT_EQ(Run("call PALLEDIsGrLedOn"), 0) << output;
}

TEST_F(DeviceCommands, FollowNoLinksAndAreNotStoppedByLeftovers) {
  ASSERT_EQ(Run("new"), 0);
  TemporaryFolder elsewhere;
  elsewhere.Write("kept", "outside");
  const auto link = [&](const char* name) {
    fs::remove_all(unit / name);
    fs::create_directory_symlink(elsewhere.path(), unit / name);
  };
  const char* call = "call PALLEDGrLedOn";
  fs::create_directory_symlink(unit, folder.path() / "link");
  EXPECT_EQ(RunTool(fmt::format("palsim {} {}", (folder.path() / "link").string(), call)).output,
            "PALLEDGrLedOn = 0x00000000 S_OK\n");
  EXPECT_EQ(Run("call PALLEDIsGrLedOn"), 0) << "the user's own link to the device";
  Put(".palsim-saving", "of an older version");
  EXPECT_EQ(Run("call PALLEDGrLedOff"), 0) << output;
  EXPECT_EQ(Run(call), 0) << output;
  Put(".palsim-saving/put/device.toml/inside", "of an interrupted command");
  EXPECT_EQ(Run("call PALLEDGrLedOff"), 0) << output;
  link(".palsim-saving");
  EXPECT_EQ(Run(call), 0) << output;
  EXPECT_FALSE(fs::exists(fs::symlink_status(unit / ".palsim-saving")));
  link("runs");
  EXPECT_EQ(Run("call PALLEDGrLedOff"), 0) << output;
  EXPECT_FALSE(fs::is_symlink(unit / "runs"));
  Put(".palsim-saved/put/files/link/new", "new");
  Put(".palsim-saved/removed/files/other/kept", "");
  Put(".palsim-saved/removed/files/gone", "");
  Put("files/gone/inside", "");
  link("files/link");
  link("files/other");
  sim::FinishChange(unit);
  EXPECT_EQ(Get(unit / "files/link/new"), "new");
  EXPECT_FALSE(fs::exists(unit / "files/gone"));
  link(".palsim-saved");
  EXPECT_EQ(Run("info"), 1);
  EXPECT_TRUE(Printed(".palsim-saved is not of the simulator; remove it")) << output;
  EXPECT_EQ(std::distance(fs::directory_iterator(elsewhere.path()), {}), 1);
  EXPECT_EQ(Get(elsewhere.path() / "kept"), "outside");
}

}  // namespace
