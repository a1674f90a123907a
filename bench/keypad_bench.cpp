// PALKEYSetButtonAction on full planes, against the platform's calls that a change of an ordinary
// key cannot do without: each plane is read, its record saved, and written back.
#include <benchmark/benchmark.h>

#include <array>
#include <vector>

#include "bench/bare_trace.h"
#include "platform/sim/exports.h"
#include "platform/wince.h"

namespace {

constexpr const WCHAR* kLayout = TEXT("Hardware\\Layout");
constexpr const WCHAR* kSettings = TEXT("Software\\Dravonel\\PAL");
constexpr std::array<const WCHAR*, 3> kPlanes = {TEXT("ShiftPlane0"), TEXT("ShiftPlane1"),
                                                 TEXT("ShiftPlane2")};
constexpr DWORD kRecordBytes = 6;
constexpr DWORD kMaxPlaneBytes = 4096;
// Plane 0 decides whether a button is supported, and is read up to here.
constexpr std::size_t kPlane0Records = 170;
constexpr std::size_t kFullRecords = 682;

std::vector<std::uint8_t> PlaneOf(std::size_t records) {
  std::vector<std::uint8_t> plane;
  for (std::size_t record = 1; record < records; ++record) {
    plane.insert(plane.end(), {7, static_cast<std::uint8_t>(record % 0x30), 0, 1, 0, 0x31});
  }
  plane.insert(plane.end(), {7, 0x43, 0, 1, 0, 0x22});
  return plane;
}

void Prepare(sim::Device& device) {
  device.InstallModule(bench::QuietEventLog());
  device.journal().set_keeps_entries(false);
  sim::Registry& registry = device.registry();
  registry.SetString("HKLM\\Hardware\\Devicemap\\Keybd", "CurrentActiveLayoutKey",
                     "Hardware\\Layout");
  registry.SetDword("HKLM\\Software\\Dravonel\\PAL", "FixActive", 1);
  registry.SetBinary("HKLM\\Hardware\\Layout", "ShiftPlane0", PlaneOf(kPlane0Records));
  registry.SetBinary("HKLM\\Hardware\\Layout", "ShiftPlane1", PlaneOf(kFullRecords));
  registry.SetBinary("HKLM\\Hardware\\Layout", "ShiftPlane2", PlaneOf(kFullRecords));
  registry.Create("HKLM\\Hardware\\Layout\\EVENTS\\DELTA");
  registry.Create("HKLM\\Hardware\\Layout\\EVENTS\\STATE");
  registry.Create("HKLM\\Drivers\\HID\\ClientDrivers\\DVLKeyboard");
}

template <class Body>
void Measure(benchmark::State& state, const Body& body) {
  sim::Device device;
  Prepare(device);
  sim::Process process(device);
  process.Run([&] {
    for ([[maybe_unused]] auto iteration : state) body(process);
  });
}

// There and back: both ways cost the same planes.
void LibraryAction(benchmark::State& state) {
  Measure(state, [](const sim::Process& process) {
    const auto set = process.exports().PALKEYSetButtonAction.address();
    benchmark::DoNotOptimize(set(5, 1));
    benchmark::DoNotOptimize(set(5, 6));
  });
}
BENCHMARK(LibraryAction)->Name("button action there and back/library");

class BareKey {
 public:
  explicit BareKey(const WCHAR* path) {
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_ALL_ACCESS, &key_);
  }
  ~BareKey() { RegCloseKey(key_); }
  BareKey(const BareKey&) = delete;
  BareKey& operator=(const BareKey&) = delete;

  DWORD Read(const WCHAR* name, void* data, DWORD bytes) const {
    const LONG error =
        RegQueryValueExW(key_, name, nullptr, nullptr, static_cast<BYTE*>(data), &bytes);
    return error == ERROR_SUCCESS ? bytes : 0;
  }
  void Write(const WCHAR* name, DWORD type, const void* data, DWORD bytes) const {
    RegSetValueExW(key_, name, 0, type, static_cast<const BYTE*>(data), bytes);
  }
  void Flush() const { RegFlushKey(key_); }

 private:
  HKEY key_ = nullptr;
};

void TraceRecord(const char* format, DWORD offset, const BYTE* record) {
  bench::BareTrace(format, offset, record[0], record[1], record[2], record[3], record[4],
                   record[5]);
}

// The record of the button in a plane, with the lines of a read.
BYTE* FindRecord(const WCHAR* path, const WCHAR* name, BYTE* plane, DWORD bytes) {
  bench::BareTrace("GetKeyValues %ls: Enter %ls ID:%d\r\n", path, name, 5);
  BYTE* found = nullptr;
  for (DWORD offset = 0; offset + kRecordBytes <= bytes; offset += kRecordBytes) {
    if (plane[offset] == 7 && plane[offset + 1] == 0x43) found = plane + offset;
  }
  if (found != nullptr) {
    const auto offset = static_cast<DWORD>(found - plane);
    TraceRecord("Key(%d):0x%x, 0x%x, 0x%x, 0x%x, 0x%x, 0x%x found\r\n", offset, found);
    TraceRecord("Key (%d):0x%x, 0x%x, 0x%x, 0x%x, 0x%x, 0x%x copied\r\n", offset, found);
  }
  bench::BareTrace("%s Complete hr=0x%x\r\n", "GetKeyValues", 0);
  return found;
}

// The lines of a write of a record.
void TraceWrite(const WCHAR* path, const WCHAR* name, DWORD offset, const BYTE* record) {
  bench::BareTrace("SetKeyValues %ls: Enter %ls ID:%d\r\n", path, name, 5);
  TraceRecord("Key(%d):0x%x, 0x%x, 0x%x, 0x%x, 0x%x, 0x%x found\r\n", offset, record);
  TraceRecord("Key (%d):0x%x, 0x%x, 0x%x, 0x%x, 0x%x, 0x%x copied\r\n", offset, record);
  bench::BareTrace("%s Complete hr=0x%x\r\n", "SetKeyValues", 0);
}

// Reads each plane once, saves or fetches the record, and writes the plane.
void BarePlanes(bool becomes_event) {
  BYTE plane[kMaxPlaneBytes];
  for (const WCHAR* name : kPlanes) {
    const BareKey layout(kLayout);
    const BareKey settings(kSettings);
    const DWORD bytes = layout.Read(name, plane, sizeof(plane));
    BYTE* const record = FindRecord(kLayout, name, plane, bytes);
    if (record == nullptr) continue;
    const auto offset = static_cast<DWORD>(record - plane);
    if (becomes_event) {
      settings.Write(name, REG_BINARY, record, kRecordBytes);
      TraceWrite(kSettings, name, 0, record);
      bench::BareTrace("%s: Enter Event: %ls index: %u\r\n", "ModifyKeyDataForEventTrigger",
                       TEXT("Event5"), 5);
      record[3] = record[4] = 2;
      record[5] = 5;
      bench::BareTrace("%s: Complete Key (%d):0x%x, 0x%x, 0x%x, 0x%x, 0x%x, 0x%x modified\r\n",
                       "ModifyKeyDataForEventTrigger", record[1], record[0], record[1], record[2],
                       record[3], record[4], record[5]);
    } else {
      settings.Read(name, record, kRecordBytes);
    }
    layout.Write(name, REG_BINARY, plane, bytes);
    TraceWrite(kLayout, name, offset, record);
  }
}

void BareEvent(const WCHAR* path, const WCHAR* event, DWORD bytes) {
  const BareKey key(path);
  WCHAR current[256];
  key.Read(TEXT("Event5"), current, sizeof(current));
  benchmark::DoNotOptimize(current);
  bench::BareTrace("\"%s\", %ls=%ls, %ls\r\n", "Left Side Top", TEXT("Event5"), event, path);
  bench::BareTrace("%s Enter\r\n", "SetupKeyForScanKeys");
  bench::BareTrace("%s Complete hr=0x%x\r\n", "SetupKeyForScanKeys", 0);
  bench::BareTrace("%s: \"%s\", %ls, %ls=%ls\r\n", "SetButtonAction", "Left Side Top", path,
                   TEXT("Event5"), event);
  key.Write(TEXT("Event5"), REG_SZ, event, bytes);
}

void BareSupport() {
  const BareKey keyboard(TEXT("Hardware\\Devicemap\\Keybd"));
  WCHAR path[260];
  keyboard.Read(TEXT("CurrentActiveLayoutKey"), path, sizeof(path));
  bench::BareTrace("ButtonIsSupported(%d) - Read \\%ls: %ls\r\n", 5, kPlanes[0], path);
  const BareKey layout(path);
  BYTE plane[1024];
  const DWORD bytes = layout.Read(kPlanes[0], plane, sizeof(plane));
  DWORD offset = 0;
  while (offset + kRecordBytes <= bytes && (plane[offset] != 7 || plane[offset + 1] != 0x43)) {
    offset += kRecordBytes;
  }
  benchmark::DoNotOptimize(offset);
  bench::BareTrace("ButtonIsSupported(%d) key:0x%x found\r\n", 5, 0x43);
}

void BareSet(bool becomes_event) {
  bench::BareTrace("%s(%d,%d)\r\n", "SetButtonAction", 5, 1);
  BareSupport();
  bench::BareTrace("%s(%d,*)\r\n", "GetButtonAction", 5);
  bench::BareTrace("0x%08X=%s(%d,*%d)\r\n", 0, "GetButtonAction", 5, 6);
  BarePlanes(becomes_event);
  const WCHAR* const delta = becomes_event ? TEXT("DeltaLeftScan") : TEXT("DeltaWindowsDefault");
  const WCHAR* const state = becomes_event ? TEXT("StateLeftScan") : TEXT("StateWindowsDefault");
  const DWORD bytes = becomes_event ? 26 : 38;
  BareEvent(TEXT("Hardware\\Layout\\EVENTS\\DELTA"), delta, bytes);
  BareEvent(TEXT("Hardware\\Layout\\EVENTS\\STATE"), state, bytes);
  bench::BareTrace("PALKEYSetButtonAction - Flushing keypad driver registry subkey");
  HANDLE event = CreateEventW(nullptr, FALSE, FALSE, TEXT("DVL_KEYBOARD_CHANGE_USB"));
  BareKey(TEXT("Drivers\\HID\\ClientDrivers\\DVLKeyboard")).Flush();
  EventModify(event, EVENT_SET);
  CloseHandle(event);
  bench::BareTrace("0x%08X=%s(%d,%d \"zero based adjusted\")\r\n", 0, "SetButtonAction", 5, 0);
}

void BareAction(benchmark::State& state) {
  Measure(state, [](const sim::Process&) {
    BareSet(true);
    BareSet(false);
  });
}
BENCHMARK(BareAction)->Name("button action there and back/bare");

}  // namespace
