// A fuzz target of the exports over a registry that holds anything: values of any type, of any
// size, without terminators or missing.
#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "platform/sim/text.h"
#include "tests/fuzz/fuzzed_device.h"

namespace {

struct Place {
  std::string key;
  std::u16string name;
  std::uint32_t type;
};

void AddPlaces(const sim::RegistryKey& key, std::vector<Place>& places) {
  const std::string path = sim::ToUtf8(key.Path());
  for (const sim::RegistryValue& value : key.values()) {
    const auto is_same = [&](const Place& place) {
      return place.key == path && place.name == value.name;
    };
    if (std::none_of(places.begin(), places.end(), is_same)) {
      places.push_back({path, value.name, value.type});
    }
  }
  for (const auto& child : key.keys()) AddPlaces(*child, places);
}

// All values that the device has for one export or another, key by key.
std::vector<Place> FindPlaces() {
  std::vector<Place> places;
  sim::Device device;
  for (const ExportRow& row : ExportRows()) {
    if (&row != &ExportRows().front() && !row.arrange) continue;
    ArrangeFor(row, device);
    for (unsigned root = 0; root < 4; ++root) AddPlaces(*device.registry().root(root), places);
  }
  return places;
}

// Deletes values or gives them others: one, those of its key, or all that there are.
void Change(FuzzedDataProvider& input, sim::Registry& registry) {
  static const std::vector<Place> places = FindPlaces();
  enum class Kind : std::uint8_t { kDelete, kDeleteKey, kAll, kOfKey, kOne, kMaxValue = kOne };
  const Place& chosen = places[input.ConsumeIntegralInRange<std::size_t>(0, places.size() - 1)];
  const auto kind = input.ConsumeEnum<Kind>();
  if (kind == Kind::kDelete) registry.Create(chosen.key)->DeleteValue(chosen.name);
  if (kind == Kind::kDeleteKey) registry.RemoveTree(chosen.key);
  if (kind <= Kind::kDeleteKey) return;

  constexpr std::size_t kMostBytes = 2000;
  const bool keeps_type = input.ConsumeBool();
  const auto type = input.ConsumeIntegralInRange<std::uint32_t>(0, 11);
  const std::string data = TakeBytes(input, kMostBytes);
  for (const Place& place : places) {
    const bool is_meant = kind == Kind::kAll || &place == &chosen ||
                          (kind == Kind::kOfKey && place.key == chosen.key);
    if (!is_meant) continue;
    registry.Create(place.key)->SetValue(place.name, keeps_type ? place.type : type,
                                         {data.begin(), data.end()});
  }
}

// Lets a value fill the caller's room, to its last byte or nearly, so that nothing ends a text.
void Fill(FuzzedDataProvider& input, sim::DriverAnswer& answer) {
  constexpr unsigned kBehindTheValue = 6;
  constexpr unsigned kAll = 7;  // below both: as it is stored, which most answers are
  if (answer.call != "RegQueryValueExW") return;
  const auto kind = input.ConsumeIntegralInRange<unsigned>(0, kAll);
  if (kind < kBehindTheValue) return;
  const std::size_t room = answer.bytes.size();
  const std::span<std::uint8_t> filled =
      answer.bytes.subspan(kind == kBehindTheValue ? answer.returned : 0);
  std::fill(filled.begin(), filled.end(), input.ConsumeIntegral<std::uint8_t>());
  const auto spared = input.ConsumeIntegralInRange<std::size_t>(0, std::min<std::size_t>(room, 2));
  answer.returned = static_cast<std::uint32_t>(room - spared);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMostCalls = 40;
  constexpr std::size_t kMostChanges = 8;
  FuzzedDataProvider input(data, size);
  FuzzedDevice fuzzed;
  const auto rows = fuzzed.TakeRows(input, kMostCalls);
  const auto changes = input.ConsumeIntegralInRange<std::size_t>(0, kMostChanges);
  for (std::size_t change = 0; change < changes; ++change) {
    Change(input, fuzzed.device().registry());
  }
  fuzzed.device().set_on_answer([&](sim::DriverAnswer& answer) { Fill(input, answer); });
  for (const ExportRow* row : rows) {
    if (!fuzzed.Call(*row)) break;
  }
  fuzzed.Finish();
  return 0;
}
