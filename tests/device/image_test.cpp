// Images for the handheld on a host: what the loader refuses, and the program that asks a handheld.
#include "platform/device/loader/image.h"

#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "platform/conformance/rows.h"
#include "platform/sim/device_folder.h"
#include "platform/sim/kernel/registry_text.h"
#include "tests/support/command_line.h"
#include "tests/support/device_test.h"

namespace {

constexpr const char* kDll = BINARY_DIR "/DVLORQPAL.dll";
constexpr std::size_t kPeHeader = 0x80;
constexpr std::size_t kOptionalHeader = kPeHeader + 24;
constexpr std::size_t kSections = kOptionalHeader + 224;

std::string Content(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

template <typename Number>
Number& NumberAt(std::string& content, std::size_t at) {
  return *reinterpret_cast<Number*>(content.data() + at);
}

// What stands in the file of its last section, the relocations.
std::size_t RelocationsOf(std::string& content) {
  const auto count = NumberAt<std::uint16_t>(content, kPeHeader + 6);
  return NumberAt<std::uint32_t>(content, kSections + 40U * (count - 1U) + 20);
}

// Everywhere: a text of the library may hold it too.
void Replace(std::string& content, std::string_view from, std::string_view to) {
  std::size_t at = content.find(from);
  for (; at != std::string::npos; at = content.find(from, at)) {
    content.replace(at, from.size(), to);
  }
}

struct Damage {
  const char* message;
  void (*change)(std::string& dll, std::string& tables);
};

const Damage kDamages[] = {
    {"it is cut short", [](std::string& dll, std::string&) { dll.clear(); }},
    {"it is cut short", [](std::string& dll, std::string&) { dll.resize(kOptionalHeader); }},
    {"it is cut short", [](std::string& dll, std::string&) { dll.resize(dll.size() / 2); }},
    {"it is cut short", [](std::string& dll, std::string&) { dll.resize(dll.size() - 512); }},
    {"it is no image", [](std::string& dll, std::string&) { dll[0] = 'E'; }},
    {"it is no image", [](std::string& dll, std::string&) { dll[kPeHeader] = 'N'; }},
    {"it is for machine 0x8664, not for ARM",
     [](std::string& dll, std::string&) { NumberAt<std::uint16_t>(dll, kPeHeader + 4) = 0x8664; }},
    {"it wants 536870912 bytes",
     [](std::string& dll, std::string&) {
       NumberAt<std::uint32_t>(dll, kOptionalHeader + 56) = 0x20000000;
     }},
    {"it is cut short",  // a section beyond the image's end
     [](std::string& dll, std::string&) {
       NumberAt<std::uint32_t>(dll, kSections + 12) = 0xFFFFF000;
     }},
    {"coredll.dll has no function RegFlushKez",
     [](std::string& dll, std::string&) { Replace(dll, "RegFlushKey", "RegFlushKez"); }},
    {"bthutil.dll has no function #7",
     [](std::string& dll, std::string&) {
       Replace(dll, {"\2\0\0\x80", 4}, {"\7\0\0\x80", 4});
     }},
    {"it has a relocation of kind 10",
     [](std::string& dll, std::string&) {
       NumberAt<std::uint16_t>(dll, RelocationsOf(dll) + 8) |= 0xA000;
       NumberAt<std::uint16_t>(dll, RelocationsOf(dll) + 8) &= 0xAFFF;
     }},
    {"its relocations are damaged",
     [](std::string& dll, std::string&) {
       NumberAt<std::uint32_t>(dll, RelocationsOf(dll) + 4) = 0;
     }},
    {"has no unwinding tables for it", [](std::string&, std::string& tables) { tables.clear(); }},
    {".exidx is cut short", [](std::string&, std::string& tables) { tables.pop_back(); }},
};

std::string LoadFailure(const std::string& file) {
  sim::Device device;
  try {
    const sim::Process process(device, "scanner.exe", file);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "loaded";
}

TEST(HandheldImage, IsRefusedWhereItIsDamaged) {
  const TemporaryFolder folder;
  std::string file = (folder.path() / "missing.dll").string();
  EXPECT_EQ(LoadFailure(file), "cannot load " + file + ": it cannot be read");
  int number = 0;
  for (const Damage& damage : kDamages) {
    std::string dll = Content(kDll);
    std::string tables = Content(std::string(kDll) + ".exidx");
    damage.change(dll, tables);
    file = folder.Write(fmt::format("{}.dll", ++number), dll);
    folder.Write(fmt::format("{}.dll.exidx", number), tables);
    const std::string failure = LoadFailure(file);
    EXPECT_TRUE(failure.starts_with("cannot load " + file)) << failure;
    EXPECT_TRUE(failure.ends_with(damage.message)) << failure << "; expected " << damage.message;
  }
  EXPECT_EQ(LoadFailure(kDll), "loaded");
}

// A device and the program palcheck.exe, which asks its questions there.
class Palcheck : public ::testing::Test {
 protected:
  void SetUp() override {
    sim::LoadDevice(device, PROJECT_DIR "/devices/rm21");
    device.registry().Create("HKEY_CURRENT_USER\\Software");
  }

  // The lines of \palcheck.txt after a run.
  std::vector<std::string> Run() {
    sim::Process process(device, "palcheck.exe");
    const sim::Image program(PAL_IMAGES "/palcheck.exe");
    using Entry = int (*)(HINSTANCE, HINSTANCE, WCHAR*, int);
    process.Run([&] {
      EXPECT_EQ(reinterpret_cast<Entry>(program.Entry())(nullptr, nullptr, nullptr, 0), 0);
    });
    const std::vector<std::uint8_t>* const written = device.files().Read("\\palcheck.txt");
    if (written == nullptr) return {};
    std::istringstream text(std::string(written->begin(), written->end()));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }

  sim::Device device;
};

// The same rows, compiled for the host, as a process of the same device.
std::vector<std::string> RowsOfTheHost(sim::Device& device) {
  std::vector<std::string> lines;
  sim::Process process(device, "palcheck.exe");
  process.Run([&lines] {
    conformance::ForEachRow([&lines](const conformance::Row& row) {
      conformance::Answer answer;
      row.ask(answer);
      const bool is_chosen = row.basis == conformance::Basis::kChosen;
      lines.push_back(
          fmt::format("{} = {}{}\r", row.name, answer.text(), is_chosen ? " [chosen]" : ""));
    });
  });
  return lines;
}

TEST_F(Palcheck, WritesEveryAnswerAndLeavesNothingElse) {
  const std::string registry = sim::ExportRegistryText(device.registry());
  const std::vector<std::string> facts = RowsOfTheHost(device);
  const std::vector<std::string> lines = Run();
  ASSERT_GT(lines.size(), facts.size() + 2);
  EXPECT_TRUE(lines.front().starts_with("palcheck: does not restart the device")) << lines.front();
  EXPECT_EQ(std::vector(lines.begin() + 1, lines.begin() + 1 + static_cast<int>(facts.size())),
            facts);
  EXPECT_EQ(lines.back(), "palcheck: done\r");
  // Behind the facts stand the queries of the library, each with its result.
  for (std::size_t i = facts.size() + 1; i + 1 < lines.size(); ++i) {
    EXPECT_TRUE(lines[i].find(" = 0x") != std::string::npos) << lines[i];
  }
  EXPECT_EQ(sim::ExportRegistryText(device.registry()), registry);
}

}  // namespace
