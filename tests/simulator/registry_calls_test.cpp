// The simulated device's own rules: what the registry's calls answer, and which keys there can be.
#include <fmt/format.h>

#include <array>
#include <string>
#include <vector>

#include "platform/sim/text.h"
#include "tests/support/device_test.h"

namespace {

using Lines = std::vector<std::string>;

class SimRegistryCalls : public DeviceTest {
 protected:
  // Of a key below HKEY_LOCAL_MACHINE.
  static HKEY Open(const WCHAR* path) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
    return key;
  }
  static LONG Create(HKEY from, const std::u16string& path) {
    HKEY key = nullptr;
    const LONG error =
        RegCreateKeyExW(from, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    if (error == ERROR_SUCCESS) RegCloseKey(key);
    return error;
  }
  [[nodiscard]] Lines RegistryLines() { return Texts(sim::Effect::kRegistry); }

  sim::Process process{device};
};

TEST_F(SimRegistryCalls, GiveTheirErrorAndSetTheLastErrorToIt) {
  device.registry().SetDword("HKLM\\Key", "Value", 5);
  process.Run([] {
    const HKEY key = Open(TEXT("Key"));
    std::array<BYTE, 4> data{};
    std::array<WCHAR, 3> name{};
    DWORD bytes = 3;
    DWORD units = static_cast<DWORD>(name.size());
    HKEY opened = nullptr;
    const auto fails = [](LONG answer, LONG error) {
      EXPECT_EQ(answer, error);
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(error));
      SetLastError(0);
    };
    fails(RegOpenKeyExW(key, TEXT("Absent"), 0, 0, &opened), ERROR_FILE_NOT_FOUND);
    fails(RegQueryValueExW(key, TEXT("Absent"), nullptr, nullptr, nullptr, nullptr),
          ERROR_FILE_NOT_FOUND);
    fails(RegDeleteValueW(key, TEXT("Absent")), ERROR_FILE_NOT_FOUND);
    fails(RegDeleteKeyW(key, TEXT("Absent")), ERROR_FILE_NOT_FOUND);
    fails(RegQueryValueExW(key, TEXT("value"), nullptr, nullptr, data.data(), &bytes),
          ERROR_MORE_DATA);
    EXPECT_EQ(bytes, 4u) << "the size that is needed";
    fails(RegEnumValueW(key, 0, name.data(), &units, nullptr, nullptr, nullptr, nullptr),
          ERROR_MORE_DATA);
    fails(RegEnumValueW(key, 1, name.data(), &units, nullptr, nullptr, nullptr, nullptr),
          ERROR_NO_MORE_ITEMS);
    fails(RegEnumKeyExW(key, 0, name.data(), &units, nullptr, nullptr, nullptr, nullptr),
          ERROR_NO_MORE_ITEMS);
    fails(RegFlushKey(nullptr), ERROR_INVALID_HANDLE);
    RegCloseKey(key);
  });
  EXPECT_EQ(device.TakeMisuse(), Lines{"caller.exe: RegFlushKey handle 0x0 was never given"});
}

TEST_F(SimRegistryCalls, WorkOnAKeyOpenedForSomethingElseButRecordIt) {
  device.registry().SetDword("HKLM\\Key", "Value", 5);
  process.Run([] {
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("Key"), 0, KEY_QUERY_VALUE, &key);
    EXPECT_EQ(RegQueryValueExW(key, TEXT("Value"), nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(RegSetValueExW(key, TEXT("Other"), 0, REG_BINARY, nullptr, 0), 0);
    EXPECT_EQ(RegDeleteValueW(key, TEXT("Value")), 0);
    RegCloseKey(key);
  });
  const std::string kept = " was given a key that was opened with the access 0x1 alone: ";
  EXPECT_EQ(device.TakeMisuse(),
            (Lines{"caller.exe: RegSetValueExW" + kept + "HKEY_LOCAL_MACHINE\\Key",
                   "caller.exe: RegDeleteValueW" + kept + "HKEY_LOCAL_MACHINE\\Key"}));
}

TEST_F(SimRegistryCalls, EnumerateInTheOrderOfCreation) {
  process.Run([] {
    for (const WCHAR* name : {TEXT("Zebra"), TEXT("apple"), TEXT("ZEBRA"), TEXT("Mouse")}) {
      EXPECT_EQ(Create(HKEY_USERS, name), ERROR_SUCCESS);
    }
    std::u16string names;
    std::array<WCHAR, 256> name{};
    DWORD units = static_cast<DWORD>(name.size());
    for (DWORD index = 0; RegEnumKeyExW(HKEY_USERS, index, name.data(), &units, nullptr, nullptr,
                                        nullptr, nullptr) == ERROR_SUCCESS;
         ++index, units = static_cast<DWORD>(name.size())) {
      names += name.data();
    }
    EXPECT_EQ(names, u"ZebraappleMouse");
  });
}

// Where each of these were a search through the key, this would take minutes.
TEST(RegistryKeys, KeepTheirOrderAndSpellingHoweverMany) {
  constexpr unsigned kCount = 100000;
  constexpr unsigned kStep = 1000;  // every such one goes again
  sim::Registry registry;
  const std::string many = "HKCU\\Many";
  const auto key = registry.Create(many);
  for (unsigned number = 0; number < kCount; ++number) {
    registry.SetDword(many, fmt::format("\u00C4{}", number), number);
    (void)registry.Create(fmt::format("{}\\Key{}", many, number));
  }
  for (unsigned number = 0; number < kCount; number += kStep) {
    EXPECT_TRUE(key->DeleteValue(sim::ToUtf16(fmt::format("\u00E4{}", number))));
    EXPECT_TRUE(registry.RemoveTree(fmt::format("{}\\KEY{}", many, number)));
  }
  registry.SetDword(many, "\u00E41", 5);
  registry.SetDword(many, "last", 6);
  ASSERT_EQ(key->keys().size(), kCount - kCount / kStep);
  ASSERT_EQ(key->values().size(), key->keys().size() + 1);
  for (unsigned place = 0; place < key->keys().size(); ++place) {
    const unsigned number = place + 1 + place / (kStep - 1);
    EXPECT_EQ(sim::ToUtf8(key->keys()[place]->name()), fmt::format("Key{}", number));
    EXPECT_EQ(sim::ToUtf8(key->values()[place].name), fmt::format("\u00C4{}", number));
  }
  EXPECT_EQ(sim::DwordOf(key->values().front()), 5u);
  EXPECT_EQ(key->values().back().name, u"last");
}

TEST_F(SimRegistryCalls, CreateNoKeyThatIsTooDeepOrHasTooLongAName) {
  std::u16string deepest = u"1";
  for (int level = 2; level <= 16; ++level) deepest += u"\\" + std::u16string(1, u'a');
  const std::u16string longest(255, u'n');
  process.Run([&] {
    EXPECT_EQ(Create(HKEY_LOCAL_MACHINE, deepest + u"\\b"), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Create(HKEY_LOCAL_MACHINE, u"2\\n" + longest), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(RegistryLines().empty()) << "nothing of the path is created";

    EXPECT_EQ(Create(HKEY_LOCAL_MACHINE, deepest), ERROR_SUCCESS);
    EXPECT_EQ(Create(HKEY_LOCAL_MACHINE, u"2\\" + longest), ERROR_SUCCESS);
    const HKEY key = Open(deepest.c_str());
    EXPECT_EQ(Create(key, u"b"), ERROR_INVALID_PARAMETER) << "it counts from the root";
    EXPECT_EQ(Create(key, u""), ERROR_SUCCESS);
    RegCloseKey(key);
  });
}

TEST_F(SimRegistryCalls, DeleteAKeyWithAllBelowItUnlessAPartIsOpen) {
  for (const char* key : {"HKLM\\Tree\\a\\b", "HKLM\\Tree\\c", "HKLM\\Kept"}) {
    device.registry().SetDword(key, "n", 1);
  }
  sim::Process other(device, "other.exe");
  for (const WCHAR* path : {TEXT("Tree"), TEXT("Tree\\A"), TEXT("Tree\\a\\b"), TEXT("Tree\\c")}) {
    HKEY held = nullptr;
    other.Run([&] { held = Open(path); });
    process.Run([] {
      EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, TEXT("Tree")), ERROR_ACCESS_DENIED);
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    });
    EXPECT_EQ(device.registry().GetDword("HKLM\\Tree\\a\\b", "n"), 1u) << "nothing is deleted";
    EXPECT_EQ(device.registry().GetDword("HKLM\\Tree\\c", "n"), 1u);
    other.Run([&] { RegCloseKey(held); });
  }
  process.Run([] {
    const HKEY parent = Open(TEXT("Tree"));
    EXPECT_EQ(RegDeleteKeyW(parent, TEXT("")), ERROR_ACCESS_DENIED) << "one's own handle counts";
    EXPECT_EQ(RegDeleteKeyW(parent, TEXT("c")), ERROR_SUCCESS) << "the parent may be open";
    RegCloseKey(parent);
    EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, TEXT("tree")), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, TEXT("")), ERROR_FILE_NOT_FOUND) << "a root stays";
  });
  EXPECT_EQ(device.registry().Find("HKLM\\Tree"), nullptr);
  EXPECT_EQ(device.registry().GetDword("HKLM\\Kept", "n"), 1u);
  EXPECT_EQ(RegistryLines(),
            (Lines{"HKEY_LOCAL_MACHINE\\Tree\\c deleted", "HKEY_LOCAL_MACHINE\\Tree deleted"}));
}

TEST_F(SimRegistryCalls, AProcessThatEndedHasNoKeyOpen) {
  device.registry().Create("HKLM\\Tree\\a");
  sim::Process other(device, "other.exe");
  other.Run([] { Open(TEXT("Tree\\a")); });
  other.Kill();
  process.Run([] { EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, TEXT("Tree")), ERROR_SUCCESS); });
}

TEST_F(SimRegistryCalls, SkipALeadingBackslashAndRecordIt) {
  device.registry().Create("HKLM\\Key\\Below");
  process.Run([] {
    RegCloseKey(Open(TEXT("\\Key")));
    EXPECT_EQ(Create(HKEY_LOCAL_MACHINE, u"\\\\Key"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, TEXT("\\Key\\Below")), ERROR_SUCCESS);
    RegCloseKey(Open(TEXT("Key\\\\")));  // elsewhere it is no misuse
  });
  const std::string misuse = " was given a path that begins with a backslash: ";
  EXPECT_EQ(device.TakeMisuse(), (Lines{"caller.exe: RegOpenKeyExW" + misuse + "\\Key",
                                        "caller.exe: RegCreateKeyExW" + misuse + "\\\\Key",
                                        "caller.exe: RegDeleteKeyW" + misuse + "\\Key\\Below"}));
}

TEST_F(SimRegistryCalls, RefuseReservedArguments) {
  process.Run([] {
    HKEY key = nullptr;
    DWORD number = 0;
    std::array<WCHAR, 9> name{};
    EXPECT_EQ(RegOpenKeyExW(HKEY_USERS, nullptr, 1, 0, &key), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegCreateKeyExW(HKEY_USERS, TEXT("a"), 1, nullptr, 0, 0, nullptr, &key, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegQueryValueExW(HKEY_USERS, nullptr, &number, nullptr, nullptr, nullptr),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegSetValueExW(HKEY_USERS, nullptr, 1, REG_NONE, nullptr, 0),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(
        RegEnumKeyExW(HKEY_USERS, 0, name.data(), &number, &number, nullptr, nullptr, nullptr),
        ERROR_INVALID_PARAMETER);
    EXPECT_EQ(
        RegEnumValueW(HKEY_USERS, 0, name.data(), &number, &number, nullptr, nullptr, nullptr),
        ERROR_INVALID_PARAMETER);
  });
  EXPECT_EQ(device.TakeMisuse().size(), 6u);
  EXPECT_TRUE(RegistryLines().empty());
}

}  // namespace
