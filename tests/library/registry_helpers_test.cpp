// Reading and writing of single registry values: results, leniencies, sizes.
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/device_test.h"

namespace {

constexpr const char* kPath = "HKEY_LOCAL_MACHINE\\Software\\Test";
constexpr const WCHAR* kKey = TEXT("Software\\Test");
constexpr const WCHAR* kValue = TEXT("Value");

class RegistryHelpers : public DeviceTest {
 protected:
  void TearDown() override { EXPECT_EQ(process.new_handles(), 0u); }

  // One call of every helper, with usable arguments.
  struct Helper {
    std::string name;
    std::function<HRESULT(const WCHAR* key)> call;
    bool ignores_value_error;
  };
  std::vector<Helper> Helpers() {
    return {
        {"set_string",
         [&](auto* k) {
           return process->set_string(HKEY_LOCAL_MACHINE, k, kValue, TEXT("ab\0"), 4);
         },
         false},
        {"set_dword", [&](auto* k) { return process->set_dword(HKEY_LOCAL_MACHINE, k, kValue, 7); },
         false},
        {"set_binary",
         [&](auto* k) { return process->set_binary(HKEY_LOCAL_MACHINE, k, kValue, bytes, 4); },
         true},
        {"get_dword",
         [&](auto* k) { return process->get_dword(HKEY_LOCAL_MACHINE, k, kValue, &number); },
         false},
        {"get_string_value",
         [&](auto* k) {
           return process->get_string_value(HKEY_LOCAL_MACHINE, k, kValue, text, &size);
         },
         false},
        {"get_string",
         [&](auto* k) {
           return process->get_string(HKEY_LOCAL_MACHINE, k, kValue, text, 64, &size);
         },
         false},
        {"get_binary",
         [&](auto* k) { return process->get_binary(HKEY_LOCAL_MACHINE, k, kValue, bytes, &size); },
         true},
    };
  }

  InternalsProcess process{device};
  DWORD number = 0;
  DWORD size = 4;
  BYTE bytes[64] = {};
  WCHAR text[64] = {};
};

TEST_F(RegistryHelpers, FindTheRootWhoseNameComesFirst) {
  struct Case {
    const char* name;
    std::uintptr_t root;
  };
  for (const Case& test :
       {Case{"HKEY_USERS\\X", 0x80000003}, Case{"HKEY_CURRENT_USER", 0x80000001},
        Case{"HKEY_CLASSES_ROOT\\X", 0x80000000}, Case{"HKEY_LOCAL_MACHINE\\X", 0x80000002},
        Case{"HKEY_CURRENT_CONFIG\\X", 0x80000002}, Case{"Software\\X", 0x80000002},
        Case{"hkey_users\\X", 0x80000002}, Case{"", 0x80000002}, Case{nullptr, 0x80000002}}) {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(process->root_from_name(test.name)), test.root);
  }
}

TEST_F(RegistryHelpers, NeedAKeyThatExists) {
  process.Run([&] {
    for (const Helper& helper : Helpers())
      EXPECT_EQ(helper.call(kKey), PAL_E_FILE_NOT_FOUND) << helper.name;
    EXPECT_EQ(process->create_set_dword(HKEY_LOCAL_MACHINE, kKey, kValue, 7), S_OK);
  });
  EXPECT_EQ(device.registry().GetDword(kPath, "Value"), 7u);
}

// The platform forbids the backslash, and the simulated registry records it as misuse.
TEST_F(RegistryHelpers, LeaveOutTheBackslashesThatAPathBeginsWith) {
  device.registry().SetDword(kPath, "Value", 5);
  process.Run([&] {
    const HKEY root = HKEY_LOCAL_MACHINE;
    EXPECT_EQ(process->get_dword(root, TEXT("\\Software\\Test"), kValue, &number), S_OK);
    EXPECT_EQ(number, 5u);
    EXPECT_EQ(process->set_dword(root, TEXT("\\\\Software\\Test"), kValue, 6), S_OK);
    EXPECT_EQ(process->create_set_dword(root, TEXT("\\Software\\New"), kValue, 7), S_OK);
    EXPECT_EQ(process->get_dword(root, TEXT("\\"), kValue, &number), PAL_E_FILE_NOT_FOUND);
  });
  EXPECT_EQ(device.registry().GetDword(kPath, "Value"), 6u);
  EXPECT_EQ(device.registry().GetDword("HKLM\\Software\\New", "Value"), 7u);
}

TEST_F(RegistryHelpers, PassOnTheErrorOfTheValueOrIgnoreItAsDescribed) {
  device.registry().Create(kPath);
  device.PlanFault({.call = "RegSetValueExW", .from_then_on = true});
  device.PlanFault({.call = "RegQueryValueExW", .from_then_on = true});
  process.Run([&] {
    for (const Helper& helper : Helpers()) {
      EXPECT_EQ(helper.call(kKey), helper.ignores_value_error ? S_OK : PAL_E_WIN32(0x1F))
          << helper.name;
    }
  });
  EXPECT_EQ(size, 4u);
  EXPECT_TRUE(device.registry().Find(std::string_view(kPath))->values().empty());
}

TEST_F(RegistryHelpers, RefuseNullAndOpenNothing) {
  const unsigned opened = device.calls("RegOpenKeyExW");
  const unsigned created = device.calls("RegCreateKeyExW");
  process.Run([&] {
    for (const Helper& helper : Helpers()) EXPECT_EQ(helper.call(nullptr), E_FAIL) << helper.name;
    const HKEY root = HKEY_LOCAL_MACHINE;
    const HRESULT results[] = {process->set_string(root, kKey, nullptr, TEXT("ab\0"), 4),
                               process->set_string(root, kKey, kValue, nullptr, 0),
                               process->set_dword(root, kKey, nullptr, 7),
                               process->create_set_dword(root, nullptr, kValue, 7),
                               process->create_set_dword(root, kKey, nullptr, 7),
                               process->set_binary(root, kKey, nullptr, bytes, 4),
                               process->set_binary(root, kKey, kValue, nullptr, 4),
                               process->get_dword(root, kKey, nullptr, &number),
                               process->get_dword(root, kKey, kValue, nullptr),
                               process->get_string_value(root, kKey, nullptr, text, &size),
                               process->get_string_value(root, kKey, kValue, nullptr, &size),
                               process->get_string_value(root, kKey, kValue, text, nullptr),
                               process->get_string(root, kKey, nullptr, text, 64, &size),
                               process->get_string(root, kKey, kValue, nullptr, 0, &size),
                               process->get_string(root, kKey, kValue, text, 64, nullptr),
                               process->get_binary(root, kKey, nullptr, bytes, &size),
                               process->get_binary(root, kKey, kValue, nullptr, &size),
                               process->get_binary(root, kKey, kValue, bytes, nullptr)};
    for (const HRESULT& result : results) EXPECT_EQ(result, E_FAIL) << "call " << &result - results;
    EXPECT_EQ(process->set_string(HKEY_LOCAL_MACHINE, kKey, kValue, TEXT("ab"), 3), E_FAIL)
        << "the unit behind the terminator must be there";
  });
  EXPECT_EQ(device.calls("RegOpenKeyExW"), opened);
  EXPECT_EQ(device.calls("RegCreateKeyExW"), created);
}

TEST_F(RegistryHelpers, StoreAStringWithItsEndAndOneMoreUnit) {
  device.registry().Create(kPath);
  process.Run([&] {
    EXPECT_EQ(process->set_string(HKEY_LOCAL_MACHINE, kKey, TEXT("Short"), TEXT("a\0z"), 4), S_OK);
    EXPECT_EQ(process->set_string(HKEY_LOCAL_MACHINE, kKey, TEXT("Empty"), TEXT("\0"), 2), S_OK);
  });
  const sim::RegistryValue* stored = device.registry().FindValue(kPath, "Short");
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(stored->type, REG_SZ);
  EXPECT_EQ(stored->data, (std::vector<std::uint8_t>{'a', 0, 0, 0, 'z', 0}));
  EXPECT_EQ(device.registry().FindValue(kPath, "Empty")->data, std::vector<std::uint8_t>(4));
}

TEST_F(RegistryHelpers, ReadANumberOfOneToFourBytes) {
  const std::vector<std::uint8_t> stored{0x11, 0x22, 0x33, 0x44, 0x55};
  constexpr std::array<DWORD, 5> kExpected{0, 0x11, 0x2211, 0x332211, 0x44332211};
  process.Run([&] {
    for (std::size_t count = 0; count < kExpected.size(); ++count) {
      device.registry().SetBinary(kPath, "Value",
                                  {stored.begin(), stored.begin() + static_cast<long>(count)});
      number = 0xEEEEEEEE;
      EXPECT_EQ(process->get_dword(HKEY_LOCAL_MACHINE, kKey, kValue, &number), S_OK);
      EXPECT_EQ(number, kExpected[count]);
    }
    device.registry().SetBinary(kPath, "Value", stored);
    EXPECT_EQ(process->get_dword(HKEY_LOCAL_MACHINE, kKey, kValue, &number), PAL_E_MORE_DATA);
    EXPECT_EQ(number, kExpected.back()) << "a failed read leaves the number alone";
  });
}

TEST_F(RegistryHelpers, KeepTheCallersDefaultsWhereBinaryIsMissingOrTooLong) {
  device.registry().SetBinary(kPath, "Long", std::vector<std::uint8_t>(5, 0x77));
  bytes[0] = 0xAB;
  process.Run([&] {
    for (const WCHAR* name : {TEXT("Missing"), TEXT("Long")}) {
      EXPECT_EQ(process->get_binary(HKEY_LOCAL_MACHINE, kKey, name, bytes, &size), S_OK);
      EXPECT_EQ(size, 4u);
      EXPECT_EQ(bytes[0], 0xAB);
    }
  });
}

TEST_F(RegistryHelpers, ReadAStringUpToItsEndAndItsLimit) {
  struct Case {
    std::size_t stored_units;
    bool terminated;
    HRESULT result;
  };
  std::vector<WCHAR> room(261);
  for (const Case& test :
       {Case{0, false, S_OK}, Case{3, true, S_OK}, Case{3, false, S_OK}, Case{259, true, S_OK},
        Case{260, false, S_OK}, Case{260, true, PAL_E_MORE_DATA}}) {
    std::vector<std::uint8_t> data;
    for (std::size_t unit = 0; unit < test.stored_units; ++unit) data.insert(data.end(), {'x', 0});
    if (test.terminated) data.insert(data.end(), {0, 0});
    device.registry().SetRaw(kPath, "Value", REG_SZ, data);
    room.assign(room.size(), u'?');
    process.Run([&] {
      EXPECT_EQ(process->get_string(HKEY_LOCAL_MACHINE, kKey, kValue, room.data(), 261, &size),
                test.result);
    });
    if (test.result != S_OK) continue;
    EXPECT_EQ(std::u16string(room.data()), std::u16string(test.stored_units, u'x'));
    EXPECT_EQ(size, data.size());
  }
}

}  // namespace
