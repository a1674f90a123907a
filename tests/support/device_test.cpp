#include "tests/support/device_test.h"

#include <cstdio>
#include <set>

DeviceTest::~DeviceTest() {
  for (const std::string& misuse : device.misuse()) ADD_FAILURE() << "misuse: " << misuse;
}

std::vector<const sim::JournalEntry*> DeviceTest::EntriesOf(sim::Effect effect) {
  std::vector<const sim::JournalEntry*> lines;
  std::set<std::uint32_t> in_entry;  // processes whose library attaches or detaches just then
  for (const sim::JournalEntry& entry : device.journal().entries()) {
    if (entry.effect == sim::Effect::kProcess) {
      if (entry.text.ends_with(" started") || entry.text.ends_with(" detaches")) {
        in_entry.insert(entry.process_id);
      } else {
        in_entry.erase(entry.process_id);
      }
    }
    if (entry.effect == effect && !in_entry.contains(entry.process_id)) {
      lines.push_back(&entry);
    }
  }
  return lines;
}

std::vector<std::string> DeviceTest::Texts(sim::Effect effect) {
  std::vector<std::string> texts;
  for (const sim::JournalEntry* entry : EntriesOf(effect)) texts.push_back(entry->text);
  return texts;
}

std::vector<std::string> DeviceTest::TraceLines(std::string_view prefix) {
  std::vector<std::string> lines;
  for (const sim::JournalEntry* entry : EntriesOf(sim::Effect::kTrace)) {
    if (entry->text.starts_with(prefix)) lines.push_back(entry->text);
  }
  return lines;
}

std::vector<std::string> DeviceTest::CategorisedLines() {
  std::vector<std::string> lines;
  for (const sim::JournalEntry* entry : EntriesOf(sim::Effect::kTrace)) {
    char category[16];
    std::snprintf(category, sizeof(category), "0x%08X ", entry->category);
    lines.push_back(category + entry->text);
  }
  return lines;
}

std::vector<std::string> DeviceTest::LinesBehind(std::string_view prefix) {
  std::vector<std::string> lines = CategorisedLines();
  std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(prefix); });
  for (std::string& line : lines) line.erase(0, prefix.size());
  return lines;
}
