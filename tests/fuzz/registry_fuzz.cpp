// A fuzz target of the exports over a registry that holds anything: values of any type, of any
// size, without terminators or missing.
#include "platform/sim/text.h"
#include "tests/fuzz/fuzzed_device.h"

namespace {

struct ValuePlace {
  std::string key;
  std::string name;
  bool operator==(const ValuePlace&) const = default;
};

void AddPlaces(const sim::RegistryKey& key, std::vector<ValuePlace>& places) {
  for (const sim::RegistryValue& value : key.values()) {
    ValuePlace place{sim::ToUtf8(key.Path()), sim::ToUtf8(value.name)};
    if (std::find(places.begin(), places.end(), place) == places.end()) {
      places.push_back(std::move(place));
    }
  }
  for (const auto& child : key.keys()) AddPlaces(*child, places);
}

// All values that the device has for one export or another.
std::vector<ValuePlace> FindPlaces() {
  std::vector<ValuePlace> places;
  sim::Device device;
  for (const ExportRow& row : ExportRows()) {
    if (&row != &ExportRows().front() && !row.arrange) continue;
    ArrangeFor(row, device);
    for (unsigned root = 0; root < 4; ++root) AddPlaces(*device.registry().root(root), places);
  }
  return places;
}

void ChangeValue(FuzzedDataProvider& input, sim::Registry& registry) {
  static const std::vector<ValuePlace> places = FindPlaces();
  constexpr std::size_t kMostBytes = 2000;
  const ValuePlace& place = places[input.ConsumeIntegralInRange<std::size_t>(0, places.size() - 1)];
  const auto key = registry.Create(place.key);
  switch (input.ConsumeIntegralInRange<unsigned>(0, 7)) {
    case 0:
      key->DeleteValue(sim::ToUtf16(place.name));
      return;
    case 1:
      registry.RemoveTree(place.key);
      return;
    default:
      break;
  }
  const auto type = input.ConsumeIntegralInRange<std::uint32_t>(0, 11);
  const std::string data = TakeBytes(input, kMostBytes);
  key->SetValue(sim::ToUtf16(place.name), type, {data.begin(), data.end()});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostCalls = 4;
  constexpr std::size_t kMostValues = 8;
  FuzzedDataProvider input(data, size);
  FuzzedDevice fuzzed;
  const auto rows = fuzzed.TakeRows(input, kMostCalls);
  const auto values = input.ConsumeIntegralInRange<std::size_t>(0, kMostValues);
  for (std::size_t value = 0; value < values; ++value) {
    ChangeValue(input, fuzzed.device().registry());
  }
  for (const ExportRow* row : rows) {
    if (!fuzzed.Call(*row)) break;
  }
  fuzzed.Finish();
  return 0;
}
