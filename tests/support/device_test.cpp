#include "tests/support/device_test.h"

#include <cstdio>

DeviceTest::~DeviceTest() {
  for (const std::string& misuse : device.misuse()) ADD_FAILURE() << "misuse: " << misuse;
}

std::vector<std::string> DeviceTest::TraceLines() {
  return device.journal().Texts(sim::Effect::kTrace);
}

std::vector<std::string> DeviceTest::TraceLines(std::string_view prefix) {
  std::vector<std::string> lines = TraceLines();
  std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(prefix); });
  return lines;
}

std::vector<std::string> DeviceTest::CategorisedLines() {
  std::vector<std::string> lines;
  for (const sim::JournalEntry& entry : device.journal().entries()) {
    if (entry.effect != sim::Effect::kTrace) continue;
    char category[16];
    std::snprintf(category, sizeof(category), "0x%08X ", entry.category);
    lines.push_back(category + entry.text);
  }
  return lines;
}
