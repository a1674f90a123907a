// The checksum of a large registry file, against what reading and summing its bytes takes, and
// against summing alone what is in memory already.
#include <benchmark/benchmark.h>

#include <cstring>
#include <numeric>
#include <vector>

#include "platform/wince.h"
#include "tests/support/internals_process.h"

namespace {

constexpr DWORD kFileBytes = 64U << 20;
constexpr const WCHAR* kPath = TEXT("\\Temp\\large.reg");

std::vector<std::uint8_t> LargeFile() {
  std::vector<std::uint8_t> bytes(kFileBytes);
  for (std::size_t at = 0; at < bytes.size(); ++at) bytes[at] = static_cast<std::uint8_t>(at * 7);
  return bytes;
}

std::vector<DWORD> InMemory() {
  const std::vector<std::uint8_t> bytes = LargeFile();
  std::vector<DWORD> words(bytes.size() / sizeof(DWORD));
  std::memcpy(words.data(), bytes.data(), bytes.size());
  return words;
}

void Prepare(sim::Device& device) {
  device.journal().set_keeps_entries(false);
  device.files().Write("\\Temp\\large.reg", LargeFile());
}

void Checksum(benchmark::State& state) {
  sim::Device device;
  Prepare(device);
  InternalsProcess process(device);
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) {
      benchmark::DoNotOptimize(process->checksum_file(kPath));
    }
  });
}
BENCHMARK(Checksum)->Name("checksum of 64 MB, to read and sum/library");
BENCHMARK(Checksum)->Name("checksum of 64 MB, to sum in memory/library");

void ReadAndSum(benchmark::State& state) {
  sim::Device device;
  Prepare(device);
  InternalsProcess process(device);
  std::vector<DWORD> words(kFileBytes / sizeof(DWORD));
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) {
      DWORD bytes = 0;
      const HANDLE file = CreateFileW(kPath, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
      ReadFile(file, words.data(), kFileBytes, &bytes, nullptr);
      CloseHandle(file);
      benchmark::DoNotOptimize(std::accumulate(words.begin(), words.end(), DWORD{0}));
    }
  });
}
BENCHMARK(ReadAndSum)->Name("checksum of 64 MB, to read and sum/bare");

void SumInMemory(benchmark::State& state) {
  const std::vector<DWORD> words = InMemory();
  for ([[maybe_unused]] auto iteration : state) {
    benchmark::DoNotOptimize(std::accumulate(words.begin(), words.end(), DWORD{0}));
  }
}
BENCHMARK(SumInMemory)->Name("checksum of 64 MB, to sum in memory/bare");

}  // namespace
