// The simulated device's own rules: programs, and the processes that run them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/sim/device_folder.h"
#include "platform/sim/hardware/hardware.h"
#include "platform/sim/kernel/kernel.h"
#include "platform/sim/kernel/loaded_library.h"
#include "platform/sim/kernel/process_state.h"
#include "platform/sim/programs/registry_importer.h"
#include "tests/support/device_test.h"
#include "tests/support/temporary_folder.h"

namespace {

using Lines = std::vector<std::string>;

class SimProcess : public DeviceTest {
 protected:
  void Install(std::function<std::uint32_t(const std::string&)> run) {
    device.files().Write("\\Windows\\tool.exe", "");
    device.InstallProgram({"\\Windows\\tool.exe", std::move(run)});
  }
  static PROCESS_INFORMATION Start(const WCHAR* image, const WCHAR* command_line = nullptr) {
    PROCESS_INFORMATION started{};
    EXPECT_NE(CreateProcessW(image, command_line, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                             nullptr, &started),
              FALSE)
        << GetLastError();
    return started;
  }
  static void Close(const PROCESS_INFORMATION& started) {
    CloseHandle(started.hProcess);
    CloseHandle(started.hThread);
  }
  Lines ProcessLines() { return device.journal().Texts(sim::Effect::kProcess); }
};

// Not for the loaders of other systems' files.
#if !defined(_WIN32) && !defined(PAL_IMAGES)
TEST_F(SimProcess, LoadsCopiesOfTheLibraryThatNobodyElseCanNameOrFind) {
  const TemporaryFolder temporary;
  setenv("TMPDIR", temporary.path().c_str(), 1);
  const auto first = sim::LoadLibraryFile(sim::DefaultLibrary());
  const auto second = sim::LoadLibraryFile(sim::DefaultLibrary());
  EXPECT_TRUE(std::filesystem::is_empty(temporary.path()));
  unsetenv("TMPDIR");
  const void* const entry = first->Symbol("PALBEEPKeyClick");
  EXPECT_NE(entry, second->Symbol("PALBEEPKeyClick"));
  EXPECT_TRUE(first->Contains(entry));
  EXPECT_FALSE(second->Contains(entry));
  EXPECT_FALSE(first->Contains(&temporary));
  const auto bytes = temporary.Write("broken", "no library");
  EXPECT_THROW((void)sim::LoadLibraryFile(bytes), std::runtime_error);
  EXPECT_THROW((void)sim::LoadLibraryFile(bytes + ".missing"), std::runtime_error);
}
#endif

TEST_F(SimProcess, RunsAProgramBesideItsParent) {
  DWORD id = 0;
  Install([&](const std::string&) {
    id = GetCurrentProcessId();
    Sleep(500);
    return 7U;
  });
  sim::Process parent(device);
  parent.Run([&] {
    const PROCESS_INFORMATION started = Start(TEXT("\\WINDOWS\\\\Tool.exe"), TEXT("a b"));
    EXPECT_EQ(WaitForSingleObject(started.hProcess, 499), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(started.hProcess, 60000), WAIT_OBJECT_0);
    EXPECT_EQ(WaitForSingleObject(started.hThread, 0), WAIT_OBJECT_0);
    EXPECT_EQ(GetTickCount(), 500u);
    EXPECT_EQ(id, started.dwProcessId);
    EXPECT_NE(id, GetCurrentProcessId());
    Close(started);
  });
  EXPECT_EQ(ProcessLines(), (Lines{"caller.exe started", "caller.exe attached",
                                   "tool.exe started: a b", "tool.exe ended with 7"}));
}

TEST_F(SimProcess, StartsThreadsOfItsOwn) {
  sim::Process process(device);
  process.Run([] {
    static DWORD ran_as = 0;
    DWORD id = 0;
    const auto run = [](LPVOID ms) -> DWORD {
      Sleep(*static_cast<DWORD*>(ms));
      ran_as = sim::CurrentThread()->id;
      return 0;
    };
    DWORD ms = 500;
    const HANDLE thread = CreateThread(nullptr, 2048, run, &ms, 0, &id);
    EXPECT_EQ(WaitForSingleObject(thread, 499), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(thread, 2), WAIT_OBJECT_0);
    EXPECT_EQ(ran_as, id);
    EXPECT_NE(CloseHandle(thread), FALSE);
    EXPECT_EQ(CreateThread(nullptr, 0, nullptr, nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(CreateThread(nullptr, 0, run, &ms, 4, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  });
}

TEST_F(SimProcess, StartsNothingThatIsNotThere) {
  device.files().Write("\\Windows\\readme.txt", "");
  device.files().CreateFolder("\\Windows\\folder.exe");
  device.InstallProgram({"\\Windows\\nofile.exe", [](const std::string&) { return 0U; }});
  sim::Process parent(device);
  parent.Run([] {
    struct Case {
      const WCHAR* image;
      LONG error;
    };
    for (const Case& test : {Case{nullptr, ERROR_INVALID_PARAMETER},
                             Case{TEXT("\\Windows\\nofile.exe"), ERROR_FILE_NOT_FOUND},
                             Case{TEXT("\\Windows\\folder.exe"), ERROR_FILE_NOT_FOUND},
                             Case{TEXT("\\Windows\\readme.txt"), 193}}) {
      EXPECT_EQ(CreateProcessW(test.image, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               nullptr, nullptr),
                FALSE);
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(test.error));
    }
  });
  EXPECT_EQ(ProcessLines(), (Lines{"caller.exe started", "caller.exe attached"}));
}

TEST_F(SimProcess, ThereAreAtMost32) {
  Install([](const std::string&) {
    Sleep(1000);
    return 0U;
  });
  sim::Process parent(device);
  parent.Run([] {
    for (int process = 2; process <= 32; ++process) Close(Start(TEXT("\\Windows\\tool.exe")));
    EXPECT_EQ(CreateProcessW(TEXT("\\Windows\\tool.exe"), nullptr, nullptr, nullptr, FALSE, 0,
                             nullptr, nullptr, nullptr, nullptr),
              FALSE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
  });
  EXPECT_THROW(sim::Process(device, "one_more.exe"), std::logic_error);
  device.RunUntilIdle();
  const sim::Process next(device, "next.exe");
  EXPECT_TRUE(next.alive());
}

TEST_F(SimProcess, OutlivesItsParent) {
  bool ended = false;
  Install([&](const std::string&) {
    Sleep(1000);
    ended = true;
    return 0U;
  });
  {
    sim::Process parent(device);
    parent.Run([&] { Close(Start(TEXT("\\Windows\\tool.exe"))); });
  }
  EXPECT_FALSE(ended);
  device.RunUntilIdle();
  EXPECT_TRUE(ended);
  EXPECT_EQ(device.now_ms(), 1000u);
}

TEST_F(SimProcess, IsKilledWithItsDevice) {
  auto short_lived = std::make_unique<sim::Device>();
  int unwound = 0;
  for (const DWORD nap : {DWORD{5000}, INFINITE}) {
    const std::string path = "\\tool" + std::to_string(nap);
    short_lived->files().Write(path, "");
    short_lived->InstallProgram({path, [&unwound, nap](const std::string&) -> std::uint32_t {
                                   const std::shared_ptr<void> guard(nullptr,
                                                                     [&](void*) { ++unwound; });
                                   Sleep(nap);
                                   ADD_FAILURE() << "a killed program went on";
                                   return 0;
                                 }});
  }
  {
    sim::Process parent(*short_lived);
    parent.Run([&] {
      Close(Start(TEXT("\\tool5000")));
      Close(Start(TEXT("\\tool4294967295")));
    });
    short_lived->Advance(100);
    parent.Run([&] { Close(Start(TEXT("\\tool5000"))); });  // never has its first turn
  }
  short_lived.reset();
  EXPECT_EQ(unwound, 2);
}

TEST_F(SimProcess, LeavesNothingBehindHoweverItEnds) {
  sim::Process parent(device);
  const auto run = [&] {
    parent.Run([&] {
      const PROCESS_INFORMATION started = Start(TEXT("\\Windows\\tool.exe"));
      EXPECT_EQ(WaitForSingleObject(started.hProcess, 1000), WAIT_OBJECT_0);
      const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("M"));
      EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
      ReleaseMutex(mutex);
      CloseHandle(mutex);
      Close(started);
    });
    return device.TakeMisuse();
  };
  Install([](const std::string&) {
    CreateMutexW(nullptr, TRUE, TEXT("M"));
    return 0U;
  });
  const Lines leak = run();
  ASSERT_EQ(leak.size(), 1u);
  EXPECT_TRUE(leak[0].starts_with("tool.exe: left open at the end: mutex ")) << leak[0];

  Install([](const std::string&) -> std::uint32_t { throw std::runtime_error("broken"); });
  EXPECT_EQ(run(), Lines{"tool.exe: threw: broken"});

  Install([&](const std::string&) {
    CreateMutexW(nullptr, TRUE, TEXT("M"));
    device.PlanFault({.call = "GetTickCount", .kill = true});
    GetTickCount();
    ADD_FAILURE() << "a killed program went on";
    return 0U;
  });
  EXPECT_EQ(run(), Lines{}) << "what a killed process held is not its mistake";
  EXPECT_EQ(ProcessLines().back(), "tool.exe killed");
}

TEST_F(SimProcess, LetsGoOfItsFilesWhenItIsKilled) {
  device.files().Write("\\a", "");
  const auto open = [] {
    return CreateFileW(TEXT("\\a"), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  };
  sim::Process killed(device);
  const auto use = [&] {
    open();
    device.PlanFault({.call = "GetTickCount", .kill = true});
    GetTickCount();
  };
  EXPECT_THROW(killed.Run(use), sim::ProcessKilled);
  sim::Process other(device);
  other.Run([&] {
    const HANDLE file = open();
    EXPECT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
    CloseHandle(file);
  });
}

// What a program in C++ does in its destructors, where no device would run them.
struct HeldMutex {
  HeldMutex() : mutex(CreateMutexW(nullptr, TRUE, TEXT("HELD"))) {}
  ~HeldMutex() {
    EXPECT_EQ(ReleaseMutex(mutex), FALSE);
    EXPECT_EQ(CloseHandle(mutex), FALSE);
    EXPECT_EQ(LoadLibraryW(TEXT("coredll.dll")), nullptr);
    Sleep(1000);
  }
  HeldMutex(const HeldMutex&) = delete;
  HeldMutex& operator=(const HeldMutex&) = delete;
  HANDLE mutex;
};

TEST_F(SimProcess, DestructorsDoNothingWhereItIsKilled) {
  sim::Process other(device, "other.exe");
  HANDLE mutex = nullptr;
  other.Run([&] { mutex = CreateMutexW(nullptr, FALSE, TEXT("HELD")); });
  sim::Process killed(device, "killed.exe");
  sim::Thread thread = killed.Start([] {
    const HeldMutex held;
    EXPECT_EQ(WaitForSingleObject(held.mutex, 0), WAIT_OBJECT_0);
    Sleep(INFINITE);
  });
  device.Advance(0);
  killed.Kill();
  EXPECT_FALSE(thread.Join());
  EXPECT_EQ(device.now_ms(), 0u);
  other.Run([&] {
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex) && CloseHandle(mutex));
  });
}

TEST_F(SimProcess, ImportsARegistryFile) {
  device.files().Write(sim::kRegistryImporterPath, "");
  device.files().Write("\\Temp\\a.reg", "REGEDIT4\n[HKLM\\Software\\A]\n\"n\"=dword:5\nnonsense\n");
  sim::Process parent(device);
  const auto import = [](const WCHAR* file) {
    const PROCESS_INFORMATION started = Start(TEXT("\\Windows\\orqautoreg.exe"), file);
    EXPECT_EQ(WaitForSingleObject(started.hProcess, 1000), WAIT_OBJECT_0);
    Close(started);
  };
  parent.Run([&] {
    const HANDLE held =
        CreateFileW(TEXT("\\Temp\\a.reg"), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    import(TEXT("\\Temp\\a.reg"));
    CloseHandle(held);
  });
  EXPECT_EQ(ProcessLines().back(), "orqautoreg.exe ended with 1") << "the file is held by another";
  EXPECT_EQ(device.registry().GetDword("HKLM\\Software\\A", "n"), std::nullopt);

  parent.Run([&] { import(TEXT("\\Temp\\a.reg")); });
  EXPECT_EQ(ProcessLines().back(), "orqautoreg.exe ended with 0");
  EXPECT_EQ(device.registry().GetDword("HKLM\\Software\\A", "n"), 5u);
  EXPECT_EQ(
      Texts(sim::Effect::kRegistry),
      (Lines{"\\Temp\\a.reg:4: neither a key, a value nor a comment", "\\Temp\\a.reg imported"}));
}

TEST(DescribedPrograms, RunAsTheDescriptionSays) {
  const TemporaryFolder folder;
  folder.Write("device.toml",
               "name = \"x\"\n[programs]\n"
               "'\\Windows\\orqautoreg.exe' = { does = \"import\", takes_ms = 700 }\n"
               "'\\Tools\\idle.exe' = { does = \"nothing\", takes_ms = 50, exit_code = 3 }\n");
  sim::Device device;
  sim::LoadDevice(device, folder.path());
  device.files().Write("\\Windows\\orqautoreg.exe", "");
  device.files().Write("\\Tools\\idle.exe", "");
  device.files().Write("\\a.reg", "[HKLM\\A]\n");
  sim::Process process(device);
  process.Run([] {
    for (const WCHAR* image : {TEXT("\\Windows\\orqautoreg.exe"), TEXT("\\Tools\\idle.exe")}) {
      CreateProcessW(image, TEXT("\\a.reg"), nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr,
                     nullptr);
    }
  });
  device.RunUntilIdle();
  EXPECT_EQ(device.now_ms(), 700u);
  EXPECT_NE(device.registry().Find("HKLM\\A"), nullptr);
  const Lines lines = device.journal().Texts(sim::Effect::kProcess);
  EXPECT_EQ(lines[lines.size() - 2], "idle.exe ended with 3");
  EXPECT_EQ(lines.back(), "orqautoreg.exe ended with 0");
}

}  // namespace
