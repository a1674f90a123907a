// The password check against the bare registry and CryptoAPI calls with the same trace lines.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench/bare_trace.h"
#include "platform/sim/exports.h"
#include "platform/wince.h"

namespace {

constexpr DWORD kHashBytes = 20;
constexpr const WCHAR* kMemberPath = TEXT("Software\\Dravonel\\SN\\Installer");
constexpr const WCHAR* kPassword = TEXT("rugged21");

template <class Body>
void Measure(benchmark::State& state, const Body& body) {
  sim::Device device;
  device.InstallModule(bench::QuietEventLog());
  device.journal().set_keeps_entries(false);
  device.registry().Create("HKCU\\Comm\\Security\\Crypto\\UserKeys\\Default");
  constexpr const char* kMember = "HKLM\\Software\\Dravonel\\SN\\Installer";
  device.registry().SetBinary(kMember, "s", {0x5A, 0x0C, 0xE1, 0x77, 0x90, 0x3D, 0xB2, 0x48});
  device.registry().SetBinary(kMember, "h",
                              {0xFE, 0x33, 0xA1, 0xEC, 0x0D, 0x60, 0xDD, 0xD3, 0x1B, 0x7B,
                               0x6D, 0xBB, 0xF2, 0xC8, 0x17, 0x77, 0xE0, 0xEE, 0x73, 0xEB});
  sim::Process process(device);
  process.Run([&] { body(state, process.exports()); });
}

void Library(benchmark::State& state) {
  Measure(state, [](benchmark::State& running, const sim::Exports& exports) {
    const auto check = exports.PALSecurity_CheckPx.address();
    if (check(TEXT("Installer"), kPassword) != 0) running.SkipWithError("a wrong answer");
    for ([[maybe_unused]] auto iteration : running) {
      benchmark::DoNotOptimize(check(TEXT("Installer"), kPassword));
    }
  });
}
BENCHMARK(Library)->Name("password check/library");

// With the sizes known and the buffers on the stack.
bool BareCheck() {
  bench::BareTrace("Entry PALSecurity_CheckPx. procid:0x%x\r\n", 1);
  HKEY key = nullptr;
  BYTE stored[kHashBytes];
  BYTE salt[8];
  BYTE value[kHashBytes];
  DWORD bytes = sizeof(stored);
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, kMemberPath, 0, KEY_QUERY_VALUE, &key);
  RegQueryValueExW(key, TEXT("h"), nullptr, nullptr, stored, &bytes);
  bytes = sizeof(salt);
  RegQueryValueExW(key, TEXT("s"), nullptr, nullptr, salt, &bytes);
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_FULL, 0);
  CryptCreateHash(provider, CALG_SHA1, 0, 0, &hash);
  CryptHashData(hash, salt, sizeof(salt), 0);
  CryptHashData(hash, reinterpret_cast<const BYTE*>(kPassword),
                static_cast<DWORD>(wcslen(kPassword) * sizeof(WCHAR)), 0);
  bytes = sizeof(value);
  CryptGetHashParam(hash, HP_HASHVAL, value, &bytes, 0);
  CryptDestroyHash(hash);
  CryptReleaseContext(provider, 0);
  RegCloseKey(key);
  bench::BareTrace("Exit PALSecurity_CheckPx. procid:0x%x, member:0x%x(0=yes,2=no)\r\n", 1, 0);
  return std::memcmp(value, stored, sizeof(value)) == 0;
}

void Bare(benchmark::State& state) {
  Measure(state, [](benchmark::State& running, const sim::Exports& /*exports*/) {
    if (!BareCheck()) running.SkipWithError("a wrong answer");
    for ([[maybe_unused]] auto iteration : running) benchmark::DoNotOptimize(BareCheck());
  });
}
BENCHMARK(Bare)->Name("password check/bare");

}  // namespace
