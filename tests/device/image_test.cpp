// Images for the handheld on a host: what the loader refuses, and the program that asks a handheld.
#include "platform/device/loader/image.h"

#include <fmt/format.h>

#include <fstream>
#include <functional>
#include <iterator>

#include "platform/conformance/report.h"
#include "platform/sim/device_folder.h"
#include "tests/support/device_test.h"
#include "tests/support/temporary_folder.h"
#include "tools/palsim/scenario/played_device.h"

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

std::string TextOf(sim::Device& device, const std::string& file) {
  const auto* const bytes = device.files().Read(file);
  return bytes == nullptr ? "" : std::string(bytes->begin(), bytes->end());
}

using Program = std::function<void()>;

// What a program left in \palcheck.txt of a new device.
std::string ReportOf(const std::string& sample, const Program& program) {
  sim::Device device;
  sim::LoadDevice(device, PROJECT_DIR "/devices/" + sample);
  sim::Process(device, "palcheck.exe").Run(program);
  return TextOf(device, "\\palcheck.txt");
}

TEST(Stockroom, ListsWhatIsScanned) {
  const sim::Image image(PAL_IMAGES "/stockroom.exe");
  using Entry = int (*)(HINSTANCE, HINSTANCE, WCHAR*, int);
  const auto entry = reinterpret_cast<Entry>(image.Entry());
  palsim::PlayedDevice played(PROJECT_DIR "/devices/rm21");
  const auto play = [&played](const std::string& text) {
    return played.Play(palsim::ParseScenario("s", text));
  };
  const auto run = [&] {
    if (!played.stage().Lives("stockroom")) played.stage().StartProcess("stockroom");
    played.stage().RunFunction(
        "stockroom", [entry] { return entry(nullptr, nullptr, nullptr, 0); }, "stockroom");
  };
  played.device().files().Write("\\Program Files\\codes.txt", "4006381333931\n\n");
  run();
  EXPECT_EQ(play("press button 5\nwait 1 s\nexpect 1 times audio sound begins *goodread.wav *\n"
                 "press button 5\nwait 1 s\nexpect 1 times audio sound begins *badread.wav *\n"
                 "wait for stockroom\nexpect stockroom returned 0\nexpect engine power is off\n"
                 "fail call 1 of LoadLibraryW with error 126"),
            std::vector<std::string>{});
  run();
  EXPECT_EQ(play("expect stockroom returned 1"), std::vector<std::string>{});
  EXPECT_EQ(played.Finish(), std::vector<std::string>{});
  EXPECT_EQ(TextOf(played.device(), "\\Program Files\\items.txt"), "4006381333931\r\n");
  EXPECT_EQ(TextOf(played.device(), "\\Program Files\\messages.txt"),
            "DVLORQPAL.dll cannot be loaded (error 126). Install it in \\Windows, or beside this "
            "program.\r\n");
}

TEST(Palcheck, WritesTheReportThatItsSourcesWriteOnTheHost) {
  const sim::Image image(PAL_IMAGES "/palcheck.exe");
  using Entry = int (*)(HINSTANCE, HINSTANCE, WCHAR*, int);
  const auto entry = reinterpret_cast<Entry>(image.Entry());
  for (const char* sample : {"greywing", "rm21", "rm23", "rx"}) {
    const std::string expected = ReportOf(sample, [] { conformance::WriteReport(); });
    EXPECT_NE(expected, "");
    EXPECT_EQ(ReportOf(sample, [entry] { entry(nullptr, nullptr, nullptr, 0); }), expected);
  }
}

}  // namespace
