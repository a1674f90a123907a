// The simulated device's own rules: what its calls refuse, count and report.
#include <fmt/format.h>

#include <array>
#include <string>
#include <vector>

#include "platform/sim/hardware/configuration_driver.h"
#include "platform/sim/hardware/hardware.h"
#include "tests/support/device_test.h"

namespace {

using SimPlatform = DeviceTest;

HANDLE OpenFile(const WCHAR* name, DWORD access, DWORD share) {
  return CreateFileW(name, access, share, nullptr, OPEN_EXISTING, 0, nullptr);
}

TEST_F(SimPlatform, RefusesAnOpenThatTheSharingDoesNotAllow) {
  struct Case {
    DWORD first_access, first_share, second_access, second_share;
    bool allowed;
  };
  constexpr DWORD kBoth = FILE_SHARE_READ | FILE_SHARE_WRITE;
  constexpr std::array kCases{
      Case{GENERIC_READ, 0, GENERIC_READ, kBoth, false},
      Case{GENERIC_READ, FILE_SHARE_READ, GENERIC_READ, FILE_SHARE_READ, true},
      Case{GENERIC_READ, FILE_SHARE_READ, GENERIC_WRITE, kBoth, false},
      Case{GENERIC_WRITE, kBoth, GENERIC_READ, FILE_SHARE_READ, false},
      Case{GENERIC_WRITE, kBoth, GENERIC_READ, kBoth, true},
  };
  device.files().Write("\\Temp\\data", "abc");
  sim::Process process(device);
  process.Run([&] {
    for (const Case& test : kCases) {
      SCOPED_TRACE(&test - kCases.data());
      const HANDLE first = OpenFile(TEXT("\\temp\\DATA"), test.first_access, test.first_share);
      ASSERT_NE(first, INVALID_HANDLE_VALUE);
      const HANDLE second = OpenFile(TEXT("\\Temp\\data"), test.second_access, test.second_share);
      EXPECT_EQ(second != INVALID_HANDLE_VALUE, test.allowed);
      if (test.allowed) {
        CloseHandle(second);
      } else {
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
      }
      CloseHandle(first);
    }
  });
}

TEST_F(SimPlatform, NamesWhatIsMissing) {
  struct Case {
    const WCHAR* name;
    LONG error;
  };
  device.files().Write("\\ConfigStore\\present", "");
  sim::Process process(device);
  process.Run([] {
    EXPECT_EQ(GetFileAttributesW(TEXT("\\NoFolder\\absent")), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(
        CreateFileW(TEXT("\\NoFolder\\new"), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr),
        INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
    for (const Case& test : {Case{TEXT("\\ConfigStore\\absent"), ERROR_FILE_NOT_FOUND},
                             Case{TEXT("\\NoFolder\\absent"), ERROR_FILE_NOT_FOUND},
                             Case{TEXT("\\ConfigStore"), ERROR_ACCESS_DENIED},
                             Case{TEXT("CFG1:"), ERROR_DEV_NOT_EXIST},
                             Case{TEXT("$bus\\OTG_0_2_0"), ERROR_DEV_NOT_EXIST}}) {
      EXPECT_EQ(OpenFile(test.name, GENERIC_READ, 0), INVALID_HANDLE_VALUE);
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(test.error));
    }
  });
}

TEST_F(SimPlatform, RecordsAnOpenThatADriverIsNotMadeFor) {
  struct Case {
    DWORD access, share, disposition;
  };
  device.hardware().drivers = {std::make_shared<sim::ConfigurationDriver>()};
  sim::Process process(device);
  constexpr DWORD kBoth = GENERIC_READ | GENERIC_WRITE;
  process.Run([] {
    for (const Case& test :
         {Case{GENERIC_READ, 0, OPEN_EXISTING}, Case{kBoth, FILE_SHARE_READ, OPEN_EXISTING},
          Case{kBoth, 0, CREATE_ALWAYS}}) {
      EXPECT_EQ(CreateFileW(TEXT("CFG1:"), test.access, test.share, nullptr, test.disposition, 0,
                            nullptr),
                INVALID_HANDLE_VALUE);
    }
  });
  const std::string misuse = "caller.exe: CreateFileW was given the access ";
  EXPECT_EQ(device.TakeMisuse(),
            (std::vector<std::string>{misuse + "0x80000000, share 0 and disposition 3 for CFG1:",
                                      misuse + "0xc0000000, share 1 and disposition 3 for CFG1:",
                                      misuse + "0xc0000000, share 0 and disposition 2 for CFG1:"}));
}

TEST_F(SimPlatform, RecordsEveryMisuseOfAHandle) {
  sim::Process owner(device, "owner.exe");
  sim::Process other(device, "other.exe");
  HANDLE mutex = nullptr;
  HKEY key = nullptr;
  owner.Run([&] {
    mutex = CreateMutexW(nullptr, FALSE, nullptr);
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT(""), 0, 0, &key), ERROR_SUCCESS);
    EXPECT_EQ(CloseHandle(key), FALSE) << "a key is closed with RegCloseKey";
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    EXPECT_EQ(RegCloseKey(HKEY_LOCAL_MACHINE), ERROR_SUCCESS) << "a root may be closed";
    EXPECT_EQ(CloseHandle(nullptr), FALSE);
  });
  other.Run([&] { EXPECT_EQ(ReleaseMutex(mutex), FALSE); });
  owner.End();
  const std::string number = fmt::format("{}", fmt::ptr(mutex));
  EXPECT_EQ(device.TakeMisuse(),
            (std::vector<std::string>{
                "owner.exe: CloseHandle was given a registry key",
                fmt::format("owner.exe: RegCloseKey handle {} is closed", fmt::ptr(key)),
                "owner.exe: CloseHandle handle 0x0 was never given",
                "other.exe: ReleaseMutex handle " + number + " belongs to process 1",
                "owner.exe: left open at the end: mutex " + number,
            }));
}

TEST_F(SimPlatform, FailsTheCallsThatAreToFail) {
  device.PlanFault({.call = "RegFlushKey", .nth = 2, .error = 5});
  device.PlanFault({.call = "GetFileAttributesW", .from_then_on = true, .error = 31});
  sim::Process process(device);
  process.Run([] {
    EXPECT_EQ(RegFlushKey(HKEY_USERS), ERROR_SUCCESS);
    EXPECT_EQ(RegFlushKey(HKEY_USERS), ERROR_ACCESS_DENIED);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(RegFlushKey(HKEY_USERS), ERROR_SUCCESS);
    for (int call = 0; call < 3; ++call) {
      EXPECT_EQ(GetFileAttributesW(TEXT("\\")), INVALID_FILE_ATTRIBUTES);
    }
  });
  EXPECT_EQ(device.calls("RegFlushKey"), 3u);
  device.ClearFaults();
  process.Run([] { EXPECT_EQ(GetFileAttributesW(TEXT("\\")), FILE_ATTRIBUTE_DIRECTORY); });
  EXPECT_THROW(device.PlanFault({.call = "RegFlush"}), std::invalid_argument);
}

TEST_F(SimPlatform, CountsLoadedLibrariesPerProcess) {
  sim::Process process(device);
  process.Run([] {
    const HMODULE module = LoadLibraryW(TEXT("COREDLL.DLL"));
    EXPECT_EQ(LoadLibraryW(TEXT("coredll.dll")), module);
    EXPECT_EQ(GetProcAddressW(module, TEXT("audioupdatefromregistry")), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_NE(FreeLibrary(module), FALSE);
    EXPECT_NE(GetProcAddressW(module, TEXT("AudioUpdateFromRegistry")), nullptr);
    EXPECT_NE(FreeLibrary(module), FALSE);
    EXPECT_EQ(FreeLibrary(module), FALSE);
    EXPECT_EQ(LoadLibraryW(TEXT("absent.dll")), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
  });
  EXPECT_EQ(device.TakeMisuse().size(), 1u);
}

// Neither the folder of a library nor its extension tells it apart from one that is loaded.
TEST_F(SimPlatform, GivesALoadedLibraryAgainForEveryPathWithItsName) {
  device.InstallModule({"tool.dll", {{"Other", nullptr}}});
  device.InstallModule({"tool.cpl", {}, "\\Tools"});
  sim::Process process(device);
  process.Run([] {
    EXPECT_EQ(LoadLibraryW(TEXT("\\Absent\\tool.dll")), nullptr) << "none is loaded yet";
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    const HMODULE module = LoadLibraryW(TEXT("\\Tools\\tool.cpl"));
    ASSERT_NE(module, nullptr);
    for (const WCHAR* path : {TEXT("tool.dll"), TEXT("TOOL"), TEXT("\\Windows\\tool.dll"),
                              TEXT("\\Absent\\tool.dll")}) {
      EXPECT_EQ(LoadLibraryW(path), module);
      FreeLibrary(module);
    }
    std::array<WCHAR, MAX_PATH> file{};
    EXPECT_EQ(GetModuleFileNameW(module, file.data(), MAX_PATH), 15u);
    EXPECT_EQ(std::u16string(file.data()), u"\\Tools\\tool.cpl");
    FreeLibrary(module);

    const HMODULE other = LoadLibraryW(TEXT("tool.dll"));
    EXPECT_NE(other, nullptr);
    EXPECT_NE(other, module) << "none is loaded any more";
    FreeLibrary(other);
  });
}

TEST_F(SimPlatform, HasNoOverlappedRequests) {
  device.files().Write("\\data", "abc");
  device.hardware().drivers = {std::make_shared<sim::ConfigurationDriver>()};
  sim::Process process(device);
  process.Run([] {
    DWORD bytes = 0;
    auto* const overlapped = reinterpret_cast<LPOVERLAPPED>(&bytes);
    const HANDLE file = OpenFile(TEXT("\\data"), GENERIC_READ | GENERIC_WRITE, 0);
    EXPECT_EQ(ReadFile(file, &bytes, 1, &bytes, overlapped), FALSE);
    EXPECT_EQ(WriteFile(file, &bytes, 1, &bytes, overlapped), FALSE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    const HANDLE driver = OpenFile(TEXT("CFG1:"), GENERIC_READ | GENERIC_WRITE, 0);
    EXPECT_EQ(DeviceIoControl(driver, 100000, nullptr, 0, &bytes, 4, &bytes, overlapped), FALSE);
    CloseHandle(file);
    CloseHandle(driver);
  });
  EXPECT_EQ(device.TakeMisuse().size(), 3u);
  EXPECT_EQ(device.files().Read("\\data")->size(), 3u);
}

TEST_F(SimPlatform, RefusesASystemTextThatDoesNotFit) {
  device.hardware().system.oem_information = sim::WideTextAnswer(u"RM21");
  sim::Process process(device);
  process.Run([] {
    std::array<WCHAR, 5> text{};
    EXPECT_EQ(SystemParametersInfoW(SPI_GETOEMINFO, 9, text.data(), 0), FALSE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(text[0], u'\0');
    EXPECT_NE(SystemParametersInfoW(SPI_GETOEMINFO, 10, text.data(), 0), FALSE);
    EXPECT_EQ(std::u16string(text.data()), u"RM21");
  });
}

// Each type has its own names.
TEST_F(SimPlatform, TellsObjectsOfTwoTypesApartThatHaveOneName) {
  sim::Process process(device);
  process.Run([] {
    SetLastError(0);
    const HANDLE mutex = CreateMutexW(nullptr, TRUE, TEXT("Name"));
    const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, TEXT("Name"));
    EXPECT_EQ(GetLastError(), 0u);
    const HANDLE again = CreateMutexW(nullptr, TRUE, TEXT("Name"));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_TIMEOUT);
    EXPECT_NE(ReleaseMutex(again), FALSE);
    EXPECT_EQ(ReleaseMutex(again), FALSE) << "the second creation did not take it once more";
    EXPECT_EQ(EventModify(event, 0), FALSE);
    EXPECT_EQ(EventModify(event, 4), FALSE);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    for (const HANDLE handle : {mutex, event, again}) CloseHandle(handle);
  });
}

}  // namespace
