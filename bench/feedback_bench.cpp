// A good read and a volume query against the platform calls that they cannot do without: the
// registry is read as often, the driver told the same, and the same lines are traced.
#include <benchmark/benchmark.h>

#include "bench/bare_trace.h"
#include "platform/sim/exports.h"
#include "platform/wince.h"
#include "tests/support/beeper_device.h"
#include "tests/support/wave_file.h"

namespace {

constexpr const WCHAR* kBeeper = TEXT("Software\\Dravonel\\BeeperVol");
constexpr const WCHAR* kState = TEXT("System\\State\\Hardware");
constexpr const WCHAR* kIndicator = TEXT("SOFTWARE\\Dravonel\\PAL");
constexpr const WCHAR* kLevels[] = {TEXT("Off"), TEXT("VeryLow"), TEXT("Low"),
                                    TEXT("Med"), TEXT("High"),    TEXT("VeryHigh")};

void Prepare(sim::Device& device) {
  device.InstallModule(bench::QuietEventLog());
  device.journal().set_keeps_entries(false);
  FurnishBeeper(device);
  device.registry().SetDword(kIndicatorKey, "IntGRI", 1);
  device.files().Write("\\GoodRead.wav", SilentWaveFile(1));
}

DWORD Read(const WCHAR* path, const WCHAR* name, void* data, DWORD bytes) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE, &key) == ERROR_SUCCESS) {
    RegQueryValueExW(key, name, nullptr, nullptr, static_cast<BYTE*>(data), &bytes);
    RegCloseKey(key);
  }
  return bytes;
}

DWORD ReadDword(const WCHAR* path, const WCHAR* name) {
  DWORD value = 0;
  Read(path, name, &value, sizeof(value));
  return value;
}

void WriteDword(const WCHAR* path, const WCHAR* name, DWORD value) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_SET_VALUE, &key) != ERROR_SUCCESS) return;
  RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof(value));
  RegCloseKey(key);
}

void ReadLevels() {
  bench::BareTrace("PALBEEPUpdateVolGainMap() - Entry");
  for (const WCHAR* level : kLevels) {
    const DWORD word = ReadDword(kBeeper, level);
    bench::BareTrace("PALBEEPUpdateVolGainMap - Updated: %ls,0x%x ", level, word);
  }
  bench::BareTrace("0x%x=PALBEEPUpdateVolGainMap() - Exit", 0);
}

// The level is found, and "CurrentVol" written anew from its word.
DWORD BareLevel() {
  ReadLevels();
  benchmark::DoNotOptimize(ReadDword(kBeeper, TEXT("CurrentVol")));
  const DWORD word = ReadDword(kBeeper, TEXT("Med"));
  bench::BareTrace("SetVolume - Applying sys vol:0x%x to %ls", word, TEXT("CurrentVol"));
  WriteDword(kBeeper, TEXT("CurrentVol"), word);
  ReadLevels();
  return 3;
}

void BareVolumeQuery() {
  bench::BareTrace("PALBEEPGetVolume(*) - Entry");
  benchmark::DoNotOptimize(BareLevel());
  bench::BareTrace("0x%x=PALBEEPGetVolume(*) - Exit", 0);
}

void BareHeadsetTest() {
  const DWORD bluetooth = ReadDword(kState, TEXT("Bluetooth"));
  bench::BareTrace("IsBTHeadsetConnected - 0x%x = dwState:0x%x & dwBT_HANDSFREE:0x%x", 0, bluetooth,
                   0x10);
  for (const DWORD bit : {0x20, 0x04}) {
    bench::BareTrace("IsBTHeadsetConnected - 0x%x = dwState:0x%x & dwBT_HANDSFREE_AUDIO:0x%x", 0,
                     bluetooth, bit);
  }
  benchmark::DoNotOptimize(ReadDword(kState, TEXT("Headset")));
}

void BareBeep() {
  bench::BareTrace("PlayDvlSynchronousBeep(%d,%ls,0x%x) - Entry", 1, TEXT("GoodRead"), 0x20000);
  DWORD volume = 0;
  DWORD gain = 0;
  waveOutGetVolume(nullptr, &volume);
  waveInMessage(nullptr, 0x114, 2, reinterpret_cast<uintptr_t>(&gain));
  bench::BareTrace("PALBEEPGetCurGain - 0x%x=waveInMessage(NULL,0x%x,0x%x,out:%d). winerr:0x%x", 0,
                   0x113, 2, gain, GetLastError());
  BareHeadsetTest();
  BareLevel();
  bench::BareTrace("PALBEEPGetSpeakerGain(in:%d,*) - Entry", 3);
  const DWORD beep_gain = ReadDword(kBeeper, TEXT("MedGain"));
  bench::BareTrace("0x%x=PALBEEPGetSpeakerGain(in:%d,*) - Exit", 0, 3);
  waveInMessage(nullptr, 0x113, 2, beep_gain);
  waveOutSetVolume(nullptr, volume);
  WCHAR path[260] = {};
  Read(kBeeper, TEXT("GoodRead"), path, sizeof(path));
  PlaySoundW(path, nullptr, SND_FILENAME);
  bench::BareTrace("PALBEEPRestoreWaveVol(in:%d) - Entry", gain);
  waveInMessage(nullptr, 0x113, 2, gain);
  bench::BareTrace("0x%x=PALBEEPRestoreGain(in:%d) - Exit", 0, gain);
  waveOutSetVolume(nullptr, volume);
  bench::BareTrace("0x%x=PlayDvlSynchronousBeep(%d,%ls,0x%x) - Exit", 0, 1, TEXT("GoodRead"),
                   0x20000);
}

void BareGoodRead(HANDLE mutex) {
  bench::BareTrace("PALBEEPGoodReadEx(in_scan_type:%d) - Entry", 0);
  WaitForSingleObject(mutex, 2000);
  if (ReadDword(kIndicator, TEXT("IntGRI")) == 1) BareBeep();
  ReleaseMutex(mutex);
  bench::BareTrace("0x%x=PALBEEPGoodReadEx(in_scan_type:%d) - Exit", 0, 0);
}

template <class Body>
void Measure(benchmark::State& state, const Body& body) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  process.Run([&] {
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, TEXT("DVLORQPAL_BEEP_MUTEX"));
    for ([[maybe_unused]] auto iteration : state) body(process.exports(), mutex);
    CloseHandle(mutex);
  });
}

void LibraryVolume(benchmark::State& state) {
  Measure(state, [](const sim::Exports& exports, HANDLE) {
    DWORD level = 0;
    benchmark::DoNotOptimize(exports.PALBEEPGetVolume.address()(&level));
    benchmark::DoNotOptimize(level);
  });
}
BENCHMARK(LibraryVolume)->Name("volume query/library");

void BareVolume(benchmark::State& state) {
  Measure(state, [](const sim::Exports&, HANDLE) { BareVolumeQuery(); });
}
BENCHMARK(BareVolume)->Name("volume query/bare");

void LibraryGoodRead(benchmark::State& state) {
  Measure(state, [](const sim::Exports& exports, HANDLE) {
    benchmark::DoNotOptimize(exports.PALBEEPGoodReadEx.address()(0));
  });
}
BENCHMARK(LibraryGoodRead)->Name("good read, one tone/library");

void BareGoodReadOneTone(benchmark::State& state) {
  Measure(state, [](const sim::Exports&, HANDLE mutex) { BareGoodRead(mutex); });
}
BENCHMARK(BareGoodReadOneTone)->Name("good read, one tone/bare");

}  // namespace
