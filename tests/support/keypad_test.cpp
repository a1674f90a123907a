#include "tests/support/keypad_test.h"

#include "platform/sim/text.h"

void KeypadTest::TearDown() {
  process.End();  // what is left open is misuse
  DeviceTest::TearDown();
}

void KeypadTest::Arrange() {
  sim::Registry& registry = device.registry();
  for (const char* key : {kLayout, kSettings, kHandleLayout}) registry.RemoveTree(key);
  registry.SetString(kKeyboard, "CurrentActiveLayoutKey", "Hardware\\Layout");
  registry.SetDword(kSettings, "FixActive", 1);
  registry.Create(kDriver);
  for (std::uint8_t plane = 0; plane < kPlaneNames.size(); ++plane) {
    // Each button but the two that signal always differs from plane to plane.
    registry.SetBinary(kLayout, kPlaneNames.at(plane),
                       {7, 0x16, 0,     1,    plane, 0x31, 7, 0x43, 1, 1, plane, 0x22,  //
                        7, 0x3F, 0,     1,    plane, 0x21, 7, 0x91, 0, 2, 2,     2,     //
                        1, 0x43, plane, 0,    0,     0xC1, 7, 0x40, 5, 1, plane, 0x1F,  //
                        7, 0x90, 0,     2,    2,     1,    7, 0,    0, 2, 2,     1,     //
                        7, 0x17, 0,     0xFF, plane, 0x31});
  }
  for (const char* layout : {kLayout, kHandleLayout}) {
    registry.Create(std::string(layout) + "\\EVENTS\\DELTA");
    registry.Create(std::string(layout) + "\\EVENTS\\STATE");
  }
  device.journal().Clear();
}

Planes KeypadTest::PlanesOf(const std::string& layout) {
  Planes planes;
  for (std::size_t plane = 0; plane < planes.size(); ++plane) {
    const sim::RegistryValue* value = device.registry().FindValue(layout, kPlaneNames.at(plane));
    if (value != nullptr) planes.at(plane) = value->data;
  }
  return planes;
}

void KeypadTest::SetEvents(const std::string& layout, const std::string& name, const Bytes& delta,
                           const Bytes& state) {
  device.registry().SetRaw(layout + "\\EVENTS\\DELTA", name, REG_SZ, delta);
  device.registry().SetRaw(layout + "\\EVENTS\\STATE", name, REG_SZ, state);
}

void KeypadTest::Delete(const std::string& key, const std::string& name) {
  device.registry().Find(key)->DeleteValue(sim::ToUtf16(name));
}

Bytes KeypadTest::EventOf(const std::string& layout, const std::string& kind,
                          const std::string& name) {
  const sim::RegistryValue* value = device.registry().FindValue(layout + "\\EVENTS\\" + kind, name);
  if (value == nullptr) return {};
  EXPECT_EQ(value->type, REG_SZ);
  return value->data;
}

DWORD KeypadTest::Get(LONG button) {
  DWORD action = 0;
  EXPECT_EQ(process.exports().PALKEYGetButtonAction(button, &action), S_OK);
  return action;
}

std::vector<std::string> KeypadTest::Changes() {
  std::vector<std::string> changes;
  for (const sim::JournalEntry& entry : device.journal().entries()) {
    const bool is_change =
        entry.effect == sim::Effect::kRegistry || entry.effect == sim::Effect::kEvent;
    if (is_change) changes.push_back(entry.text);
  }
  return changes;
}

Bytes Unterminated(std::u16string_view text) {
  Bytes bytes;
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

Bytes OtherRecords(std::size_t count) {
  Bytes bytes;
  for (std::size_t record = 0; record < count; ++record) {
    bytes = std::move(bytes) + Bytes{7, 0x16, 0, 1, static_cast<std::uint8_t>(record), 0x31};
  }
  return bytes;
}
