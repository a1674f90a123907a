// Makes the calls whose instructions bench/measure.py counts: every export as the tests call it,
// and a dozen of them, each the shape of many, beside the same call written by hand. It prints a
// line for each; callgrind's counts are dumped under the name that begins the line.
#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/export_rows.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_ZERO_STATS
#define CALLGRIND_TOGGLE_COLLECT
#define CALLGRIND_DUMP_STATS_AT(name) static_cast<void>(name)
#endif

namespace {

constexpr const char* kLibrary = BINARY_DIR "/DVLORQPAL.so";
constexpr const char* kByHand = BINARY_DIR "/DVLORQPAL_by_hand.so";

// The most that a configuration store can hold: 256 indexed entries of three bytes each.
void WithFullStore(sim::Device& device) {
  std::vector<std::uint8_t> bytes{0xBB};
  for (unsigned entry = 0; entry < 256; ++entry) {
    bytes.insert(bytes.end(), {static_cast<std::uint8_t>(entry % 3),
                               static_cast<std::uint8_t>(entry), std::uint8_t{0}});
  }
  bytes.push_back(0xFF);
  device.files().Write("\\ConfigStore\\dcecfg", bytes);
}

struct Shape {
  const char* row;  // its title
  const char* what;
  double limit;  // the library's own instructions, in those of the call by hand
  void (*arrange)(sim::Device& device) = nullptr;
};

constexpr Shape kShapes[] = {
    {"PALDISPGetDisplayBrightnessAmbient", "a number read from the registry", 2},
    {"PALDISPSetDisplayBrightnessAmbient", "a number written to the registry", 3},
    {"PALLEDGrLedOn", "an LED switched under a mutex", 3.7},
    {"PALBEEPGetVolume", "a level looked for", 2},
    {"PALBEEPKeyClick", "a tone played", 2.4},
    {"PALSysinfo_GetSerialNumberExA", "a text that the process has kept", 7},
    {"PALMFGOpt_InternalDeviceType", "a parameter of the device looked up", 3.8},
    {"PALMFGOpt_IsDisabledByPolicy", "keys whose paths are put together", 1.7},
    {"PALSysio_SetScanTrigger", "a driver told", 3.6},
    {"PALSysio_MmMapIoSpace", "a service passed on to a kept target", 1.2},
    {"PALPWRSuspendCtrl: stop", "a flag set", 1.6},
    {"PALMFGOpt_ConfigStoreRegUpdate", "256 entries of a configuration store", 25, &WithFullStore},
};

// What two calls gave and did.
struct Deed {
  DWORD first = 0;
  DWORD second = 0;
  Room room;
  std::vector<std::string> effects;  // of the first on the device, but for trace lines

  bool operator==(const Deed& other) const {
    return first == other.first && second == other.second && effects == other.effects &&
           room.HoldsTheSameAs(other.room);
  }
};

template <typename Body>
void Count(const std::string& name, const Body& body) {
  CALLGRIND_ZERO_STATS;
  CALLGRIND_TOGGLE_COLLECT;
  body();
  CALLGRIND_TOGGLE_COLLECT;
  CALLGRIND_DUMP_STATS_AT(name.c_str());
}

// Each in a process of its own that has not made the call yet.
void MeasureExports() {
  for (const ExportRow& row : ExportRows()) {
    sim::Device device;
    ArrangeFor(row, device);
    sim::Process process(device);
    if (row.before) row.before(process);
    const std::string name = fmt::format("row{}", &row - ExportRows().data());
    Room room;
    Count(name, [&] { (void)row.run(process.exports(), room); });
    fmt::print("{}\t{}\n", name, row.title());
    if (row.after) row.after(process);
  }
}

void MeasureEntry() {
  sim::Device device;
  ArrangeFor(ExportRows().front(), device);
  std::unique_ptr<sim::Process> process;
  Count("attach", [&] { process = std::make_unique<sim::Process>(device); });
  Count("detach", [&] { process.reset(); });
}

std::vector<std::string> EffectsOf(sim::Device& device) {
  std::vector<std::string> effects;
  for (const sim::JournalEntry& entry : device.journal().entries()) {
    if (entry.effect == sim::Effect::kTrace || entry.effect == sim::Effect::kDebug) continue;
    effects.push_back(entry.text);
  }
  return effects;
}

// Two calls of a process: what they do is compared, and the second is counted.
Deed Play(const Shape& shape, const ExportRow& row, const char* library, const std::string& name) {
  sim::Device device;
  ArrangeFor(row, device);
  if (shape.arrange != nullptr) shape.arrange(device);
  sim::Process process(device, "caller.exe", library);
  if (row.before) row.before(process);
  Deed deed;
  device.journal().Clear();
  deed.first = row.run(process.exports(), deed.room);
  deed.effects = EffectsOf(device);
  device.journal().set_keeps_entries(false);
  Count(name, [&] { deed.second = row.run(process.exports(), deed.room); });
  if (row.after) row.after(process);
  return deed;
}

bool Measure(const Shape& shape) {
  const auto row = std::ranges::find(ExportRows(), shape.row, &ExportRow::title);
  if (row == ExportRows().end()) {
    fmt::print(stderr, "{}: there is no such row\n", shape.row);
    return false;
  }
  const std::string name = fmt::format("shape{}", &shape - kShapes);
  if (!(Play(shape, *row, kLibrary, name + ".library") ==
        Play(shape, *row, kByHand, name + ".by_hand"))) {
    fmt::print(stderr, "{}: the call by hand does something else\n", shape.row);
    return false;
  }
  fmt::print("{}\t{}\t{}\t{}\n", name, shape.row, shape.what, shape.limit);
  return true;
}

}  // namespace

int main() {
  MeasureEntry();
  MeasureExports();
  return std::ranges::count_if(kShapes, &Measure) == std::ssize(kShapes) ? 0 : 1;
}
