// The check of passwords against salted hashes, and the simulated CryptoAPI behind it.
#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/device_test.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<std::string>;

constexpr DWORD kRight = 0;
constexpr DWORD kWrong = 1;
constexpr const char* kMembers = "HKLM\\Software\\Dravonel\\SN\\";
constexpr const char* kKeySet = "HKCU\\Comm\\Security\\Crypto\\UserKeys\\Default";

Bytes FromHex(const std::string& digits) {
  Bytes bytes;
  for (std::size_t at = 0; at < digits.size(); at += 2) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(at, 2), nullptr, 16)));
  }
  return bytes;
}

Bytes FromText(const std::string& text) {
  return {text.begin(), text.end()};
}

// The password whose characters are these bytes.
std::u16string Password(const std::string& bytes) {
  std::u16string password;
  for (std::size_t at = 0; at < bytes.size(); at += 2) {
    password += static_cast<char16_t>(static_cast<unsigned char>(bytes[at]) |
                                      (static_cast<unsigned char>(bytes[at + 1]) << 8));
  }
  return password;
}

// Published values of SHA-1.
const Bytes kHashOfNothing = FromHex("da39a3ee5e6b4b0d3255bfef95601890afd80709");
const Bytes kHashOfAbc = FromHex("a9993e364706816aba3e25717850c26c9cd0d89d");
const std::string kTwoBlocks = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
const Bytes kHashOfTwoBlocks = FromHex("84983e441c3bd26ebaae4aa1f95129e5e54670f1");
const Bytes kHashOfMillionAs = FromHex("34aa973cd4c4daa4f61eeb2bdbad27316534016f");

class PasswordCheck : public DeviceTest {
 protected:
  PasswordCheck() { device.registry().Create(kKeySet); }

  void Provision(const Bytes& salt, const Bytes& hash, const std::string& member = "M") {
    device.registry().SetBinary(kMembers + member, "s", salt);
    device.registry().SetBinary(kMembers + member, "h", hash);
  }
  // Nothing may be left behind, whatever the answer.
  DWORD Check(const WCHAR* password, const WCHAR* member = TEXT("M")) {
    const DWORD answer = process.exports().PALSecurity_CheckPx(member, password);
    EXPECT_EQ(process.new_handles(), 0U);
    EXPECT_EQ(process.heap_blocks(), 0U);
    return answer;
  }

  sim::Process process{device};
};

TEST_F(PasswordCheck, AgreesWithPublishedHashes) {
  const std::string million(1000000, 'a');
  struct Case {
    std::string salt, password;  // whose bytes together are hashed
    Bytes hash;
  };
  for (const Case& test : {
           Case{"abc", "", kHashOfAbc},  // of the empty password nothing is hashed
           Case{"a", "bc", kHashOfAbc},
           Case{kTwoBlocks.substr(0, 2), kTwoBlocks.substr(2), kHashOfTwoBlocks},
           Case{million.substr(2), "aa", kHashOfMillionAs},
           Case{"aa", million.substr(2), kHashOfMillionAs},
       }) {
    Provision(FromText(test.salt), test.hash);
    EXPECT_EQ(Check(Password(test.password).c_str()), kRight) << test.salt.size();
    EXPECT_EQ(Check(TEXT("wrong")), kWrong);
    EXPECT_EQ(Check(nullptr), test.password.empty() ? kRight : kWrong);
  }
}

TEST_F(PasswordCheck, TellsUpperFromLowerCase) {
  // "rugged21" in UTF-16 behind its salt.
  Provision(FromHex("5a0ce177903db248"), FromHex("fe33a1ec0d60ddd31b7b6dbbf2c81777e0ee73eb"));
  EXPECT_EQ(Check(TEXT("rugged21")), kRight);
  for (const WCHAR* wrong : {TEXT("Rugged21"), TEXT("rugged2"), TEXT("rugged211"), TEXT("")}) {
    EXPECT_EQ(Check(wrong), kWrong);
  }
}

TEST_F(PasswordCheck, ComparesTheWholeStoredHash) {
  Bytes first = kHashOfAbc;
  first.front() ^= 0x80;
  Bytes last = kHashOfAbc;
  last.back() ^= 1;
  Bytes longer = kHashOfAbc;
  longer.push_back(0);
  Bytes padded = kHashOfAbc;
  padded.resize(4096);
  const Bytes shorter(kHashOfAbc.begin(), kHashOfAbc.end() - 1);
  for (const Bytes& hash : {first, last, longer, padded, shorter, Bytes{0xA9}}) {
    Provision(FromText("a"), hash);
    EXPECT_EQ(Check(Password("bc").c_str()), kWrong) << hash.size();
  }
}

TEST_F(PasswordCheck, AcceptsTheEmptyPasswordAloneWhereNothingIsProvisioned) {
  struct Case {
    const char* description;
    void (*arrange)(sim::Registry& registry);
  };
  constexpr const char* kKey = "HKLM\\Software\\Dravonel\\SN\\M";
  for (const Case& test : {
           Case{"no key", [](sim::Registry&) {}},
           Case{"no values", [](sim::Registry& registry) { registry.Create(kKey); }},
           Case{"no hash",
                [](sim::Registry& registry) {
                  registry.SetBinary(kKey, "s", {1, 2});
                }},
           Case{"no salt",
                [](sim::Registry& registry) { registry.SetBinary(kKey, "h", kHashOfNothing); }},
           Case{"an empty hash",
                [](sim::Registry& registry) {
                  registry.SetBinary(kKey, "s", {1});
                  registry.SetBinary(kKey, "h", {});
                }},
           Case{"an empty salt",
                [](sim::Registry& registry) {
                  registry.SetBinary(kKey, "s", {});
                  registry.SetBinary(kKey, "h", FromText("abc"));
                }},
       }) {
    device.registry().RemoveTree(kKey);
    test.arrange(device.registry());
    EXPECT_EQ(Check(TEXT("")), kRight) << test.description;
    EXPECT_EQ(Check(nullptr), kRight) << test.description;
    EXPECT_EQ(Check(TEXT("x")), kWrong) << test.description;
  }
  Provision(FromText("a"), kHashOfAbc);
  for (const auto& [password, answer] : {std::pair{TEXT(""), kRight}, {TEXT("x"), kWrong}}) {
    device.PlanFault({.call = "RegOpenKeyExW", .error = 5});
    EXPECT_EQ(Check(password), answer) << "a key that cannot be opened";
    device.ClearFaults();
  }
  EXPECT_EQ(device.calls("CryptAcquireContextW"), 0U);
}

TEST_F(PasswordCheck, ReadsValuesOfAnyType) {
  device.registry().SetRaw("HKLM\\Software\\Dravonel\\SN\\M", "s", REG_DWORD, FromText("a"));
  device.registry().SetRaw("HKLM\\Software\\Dravonel\\SN\\M", "h", REG_SZ, kHashOfAbc);
  EXPECT_EQ(Check(Password("bc").c_str()), kRight);
}

TEST_F(PasswordCheck, RefusesAMemberWithoutNameOrWithTooLongAName) {
  const std::string fits(238, 'm');
  Provision(FromText("a"), kHashOfAbc, fits);
  Provision(FromText("a"), kHashOfAbc, fits + 'm');
  const std::u16string wide(fits.begin(), fits.end());
  const std::u16string password = Password("bc");
  EXPECT_EQ(Check(password.c_str(), wide.c_str()), kRight) << "a path of 259 characters";
  device.journal().Clear();
  EXPECT_EQ(Check(password.c_str(), (wide + u'm').c_str()), kWrong);
  EXPECT_EQ(Check(TEXT(""), std::u16string(70000, u'x').c_str()), kWrong);
  EXPECT_EQ(TraceLines().size(), 4U) << "entry and exit";
  EXPECT_EQ(Check(TEXT(""), nullptr), kWrong);
  EXPECT_EQ(Check(nullptr, nullptr), kWrong);
  EXPECT_EQ(TraceLines("ERROR"),
            (Lines(2, "ERROR Security_CheckPx key invalid. procid:0x1\\r\\n")));
}

TEST_F(PasswordCheck, MakesTheKeySetForTheNextCheck) {
  device.registry().RemoveTree("HKCU\\Comm");
  Provision(FromText("a"), kHashOfAbc);
  EXPECT_EQ(Check(Password("bc").c_str()), kWrong) << "none is made in time for this one";
  EXPECT_EQ(
      CategorisedLines(),
      (Lines{"0x44460000 Entry PALSecurity_CheckPx. procid:0x1\\r\\n",
             "0xC4460000 Error during CryptAcquireContext. flag:NULL, win32err:0x80090016",
             "0x44460000 Exit PALSecurity_CheckPx. procid:0x1, member:0x1(0=yes,2=no)\\r\\n"}));
  EXPECT_EQ(device.calls("CryptCreateHash"), 0U);
  EXPECT_EQ(Check(Password("bc").c_str()), kRight);
  EXPECT_EQ(TraceLines().back(),
            "Exit PALSecurity_CheckPx. procid:0x1, member:0x0(0=yes,2=no)\\r\\n");
}

TEST_F(PasswordCheck, EndsWithAWrongAnswerWhereCryptoApiFails) {
  struct Case {
    sim::Fault fault;
    Lines lines;
    bool has_key_set = true;
  };
  for (const Case& test : {
           Case{{.call = "CryptAcquireContextW", .error = 8}, {}},
           Case{{.call = "CryptAcquireContextW", .nth = 2, .error = 14},
                {"Error during CryptAcquireContext. flag:NULL, win32err:0x80090016",
                 "Error during CryptAcquireContext. flag: CRYPT_NEWKEYSET, win32err:0xe"},
                false},
           Case{{.call = "CryptCreateHash", .error = 0x1F}, {"Error 1f during CryptCreateHash!"}},
           Case{{.call = "CryptHashData"}, {"Error during CryptHashData on salt."}},
           Case{{.call = "CryptHashData", .nth = 2}, {"Error during CryptHashData on password."}},
           Case{{.call = "CryptGetHashParam"}, {"CryptGetHashParam failed to get size."}},
           Case{{.call = "malloc", .nth = 3}, {"Memory allocation failed."}},
           Case{{.call = "CryptGetHashParam", .nth = 2},
                {"CryptGetHashParam failed to get hash value."}},
       }) {
    Provision(FromText("a"), kHashOfAbc);
    if (!test.has_key_set) device.registry().RemoveTree(kKeySet);
    device.journal().Clear();
    device.PlanFault(test.fault);
    EXPECT_EQ(Check(Password("bc").c_str()), kWrong) << test.fault.call;
    device.ClearFaults();
    device.registry().Create(kKeySet);
    const Lines lines = TraceLines();
    ASSERT_EQ(lines.size(), test.lines.size() + 2) << test.fault.call;
    EXPECT_EQ(Lines(lines.begin() + 1, lines.end() - 1), test.lines);
  }
  EXPECT_EQ(device.registry().Find("HKCU\\Comm")->keys().size(), 1U);
}

// Also where a value is there but cannot be read: that is not a member without a password.
TEST_F(PasswordCheck, NeverTakesAWrongPasswordForRightWhateverFails) {
  Provision(FromText("a"), kHashOfAbc);
  const unsigned before = device.calls();
  EXPECT_EQ(Check(Password("bc").c_str()), kRight);
  const unsigned count = device.calls() - before;
  EXPECT_GT(count, 15U);
  for (unsigned nth = 1; nth <= count; ++nth) {
    for (const bool from_then_on : {false, true}) {
      sim::Process victim(device, "victim.exe");
      device.PlanFault({.nth = nth, .from_then_on = from_then_on});
      EXPECT_EQ(victim.exports().PALSecurity_CheckPx(TEXT("M"), TEXT("x")), kWrong) << nth;
      device.ClearFaults();
    }
  }
  for (const char* call : {"RegQueryValueExW", "malloc"}) {
    for (unsigned nth = 1; nth <= 4; ++nth) {
      device.PlanFault({.call = call, .nth = nth});
      EXPECT_EQ(Check(TEXT("")), kWrong) << call << nth;
      device.ClearFaults();
    }
  }
}

TEST_F(PasswordCheck, WipesWhatItHadInMemory) {
  Provision(FromText("a secret salt"), kHashOfAbc);
  std::vector<std::string> freed;
  device.set_on_free([&](std::string_view bytes) { freed.emplace_back(bytes); });
  EXPECT_EQ(Check(TEXT("password")), kWrong);
  device.PlanFault({.call = "CryptGetHashParam", .nth = 2});
  EXPECT_EQ(Check(TEXT("password")), kWrong);
  device.set_on_free({});
  ASSERT_EQ(freed.size(), 6U) << "twice salt, stored hash and hash";
  for (const std::string& block : freed) EXPECT_EQ(block, std::string(block.size(), '\0'));
}

class SimulatedCryptography : public DeviceTest {
 protected:
  sim::Process process{device};
};

TEST_F(SimulatedCryptography, HashesAsPublished) {
  process.Run([] {
    HCRYPTPROV provider = 0;
    EXPECT_FALSE(CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_FULL, 0));
    EXPECT_EQ(GetLastError(), 0x80090016U) << "no key set yet";
    ASSERT_TRUE(CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_FULL, CRYPT_NEWKEYSET));
    HCRYPTHASH hash = 0;
    EXPECT_FALSE(CryptCreateHash(provider, 0x8003, 0, 0, &hash)) << "MD5 is not simulated";
    ASSERT_TRUE(CryptCreateHash(provider, CALG_SHA1, 0, 0, &hash));
    Bytes value(20);
    DWORD bytes = 19;
    EXPECT_FALSE(CryptGetHashParam(hash, HP_HASHVAL, value.data(), &bytes, 0));
    EXPECT_EQ(bytes, 20U);
    EXPECT_TRUE(CryptGetHashParam(hash, HP_HASHVAL, value.data(), &bytes, 0));
    EXPECT_EQ(value, kHashOfNothing);
    EXPECT_FALSE(CryptHashData(hash, value.data(), 1, 0)) << "it is finished";
    EXPECT_TRUE(CryptDestroyHash(hash));
    EXPECT_TRUE(CryptReleaseContext(provider, 0));
  });
}

TEST_F(SimulatedCryptography, NoticesWhatIsDoneWrong) {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  process.Run([&] {
    CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_FULL, CRYPT_NEWKEYSET);
    CryptCreateHash(provider, CALG_SHA1, 0, 0, &hash);
    EXPECT_FALSE(CloseHandle(reinterpret_cast<HANDLE>(hash)));
    EXPECT_FALSE(CryptDestroyHash(provider));
    CryptReleaseContext(provider, 0);
    EXPECT_FALSE(CryptReleaseContext(provider, 0));
    CryptHashData(hash, reinterpret_cast<const BYTE*>("a"), 1, 0);
  });
  EXPECT_EQ(device.TakeMisuse().size(), 4U);
  process.End();
  EXPECT_EQ(device.TakeMisuse().size(), 1U) << "the hash is still there";
}

}  // namespace
