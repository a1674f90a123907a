// The update of the registry from the configuration store, through the export that does it.
#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/device_test.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr std::string_view kBase = "HKEY_LOCAL_MACHINE\\Software\\Dravonel\\";
constexpr std::size_t kLargestFile = 1023;
constexpr std::size_t kMostRecords = 256;

class ConfigStoreUpdate : public DeviceTest {
 protected:
  void SetUp() override { device.files().CreateFolder("\\ConfigStore"); }

  // Updates from a file of these bytes; the registry's changes, created keys left out.
  std::vector<std::string> Update(std::string_view file) {
    device.files().Write("\\ConfigStore\\dcecfg", file);
    return Update();
  }
  std::vector<std::string> Update() {
    device.journal().Clear();
    EXPECT_EQ(process.exports().PALMFGOpt_ConfigStoreRegUpdate(), S_OK);
    std::vector<std::string> writes = device.journal().Texts(sim::Effect::kRegistry);
    std::erase_if(writes, [](const std::string& line) { return line.ends_with(" created"); });
    return writes;
  }

  std::vector<std::string> ErrorLines() { return LinesBehind("0xC3F00000 "); }

  sim::Process process{device, "provision.exe"};
};

const std::string kNotProcessed = "No key processed.";
const std::string kNoEnd = "End of file before end of string";
const std::string kEnd = "Unexpected end of file";
const std::string kBlockEnd = "Abnormal subsection end";
const std::string kEntryEnd = "Abnormal keyentry end";
const std::string kBadIndex = "Key Index out of bounds";
const std::string kBadFrame = "Invalid frame or command type";

TEST_F(ConfigStoreUpdate, WritesOrRefusesEachEntry) {
  struct Case {
    std::string_view what;
    std::string file;                 // with '|' for its zero bytes
    std::vector<std::string> writes;  // below kBase, where they do not begin with "HKEY"
    std::vector<std::string> errors{};
  };
  std::vector<Case> cases = {
      // Direct sections.
      {"number", "\xBB\xABK:ThreadPriority|\x05|\xFF", {"K \"ThreadPriority\"=dword:00000005"}},
      {"sign is extended", "\xBB\xABK:V|\xFF\xFF\xFF", {"K \"V\"=dword:ffffffff"}},
      {"no colon", "\xBB\xABK|\x01|\xFF", {"K \"Default\"=dword:00000001"}},
      {"empty value name", "\xBB\xABK:|\x01|\xFF", {"K @=dword:00000001"}},
      {"second colon", "\xBB\xABK:a:b|\x01|\xFF", {"K \"a:b\"=dword:00000001"}},
      {"8-bit text without end", "\xBB\xAAK:V|ab|\xFF", {"K \"V\"=hex(1):61,62"}},
      {"empty text", "\xBB\xAAK:V||\xFF", {"K \"V\"=hex(1):"}},
      {"bytes", "\xBB\xACK:V|0A01FF|\xFF", {"K \"V\"=hex:0a,01,ff"}},
      {"odd digits", "\xBB\xACK:V|0A1|\xFF", {"K \"V\"=hex:0a,01"}},
      {"no digits", "\xBB\xACK:V|G1 21G|\xFF", {"K \"V\"=hex:00,02,01"}},
      // Blanks and a sign may stand in a pair in front of its digits.
      {"pairs of all kinds",
       "\xBB\xACK:V| 5\t6+7-85x0x-|\xFF",
       {"K \"V\"=hex:05,06,07,f8,05,00,00"}},
      {"each root",
       "\xBB\xABHKEY_CURRENT_USER\\K:V|\x01|\xABHKEY_USERS\\K:V|\x01|\xABHKEY_CLASSES_ROOT\\K:V|\x01|"
       "\xABHKEY_LOCAL_MACHINE\\K:V|\x01|\xABHKEY_OTHER\\K:V|\x01|\xFF",
       {"HKEY_CURRENT_USER\\K \"V\"=dword:00000001", "HKEY_USERS\\K \"V\"=dword:00000001",
        "HKEY_CLASSES_ROOT\\K \"V\"=dword:00000001", "HKEY_LOCAL_MACHINE\\K \"V\"=dword:00000001",
        "HKEY_LOCAL_MACHINE\\K \"V\"=dword:00000001"}},
      {"indexed",
       "\xBB|\x01\x02\x08\x03|\xFF",
       {"Decodes \"ThreadPriority\"=dword:00000201",
        "HKEY_LOCAL_MACHINE\\Drivers\\Dravonel\\EAC \"ImagerNRTPriority\"=dword:00000003"}},
      {"index 9, then its value read as entries",
       "\xBB\x09\x01\x02\x01|\xFF",
       {"DCEDriver \"BeepThreadPriority\"=dword:00000001"},
       {"Index 9 out of bounds", kNotProcessed}},
      {"empty section reads its end as an index",
       "\xBB\xFF\x20\x20",
       {},
       {"Index 255 out of bounds", kNotProcessed, "Index 32 out of bounds", kNotProcessed}},
      {"bytes between sections",
       "xx\xBB|\x05|\xFFyy\xBB|\x06|\xFF",
       {"Decodes \"ThreadPriority\"=dword:00000005", "Decodes \"ThreadPriority\"=dword:00000006"}},
      {"number cut short, its byte read as an index",
       "\xBB|\x05",
       {"Decodes \"ThreadPriority\"=dword:ffffffff"},
       {kNotProcessed}},
      {"nothing behind a literal marker", "\xBB\xAB", {}, {kEnd, kNotProcessed}},
      {"key without end", "\xBB\xABK:V", {}, {kNoEnd, kNotProcessed}},
      {"key at the end", "\xBB\xABK:V|", {}, {kNotProcessed}},
      {"text without end", "\xBB\xAAK:V|ab", {}, {kNoEnd}},
      {"bytes at the start are no markers",
       "\xAB\xFF\xBB|\x05|",
       {"Decodes \"ThreadPriority\"=dword:00000005"}},
      // DSCP sections.
      {"all formats and frames",
       "\xCC|\3A|01|B\0010203|A\x02Name|04|\xDD\xEE\xFF",
       {"ADCPorts\\3\\DevConfig \"OneByteAfterFidFmt\"=hex:01",
        "ADCPorts\\3\\CntrlCmdConfig \"TwoByteAfterFidFmt\"=hex:02,03",
        "ADCPorts\\3\\DevConfig\\StringAfterFidFmt \"Name\"=hex:04"}},
      {"several blocks and subsections",
       "\xCC|\1A|01|\xDD\22A|02|\xDD\xEE\1\57A|03|\xDD\xEE\xFF",
       {"ADCPorts\\1\\DevConfig \"OneByteAfterFidFmt\"=hex:01",
        "ADCPorts\\18\\DevConfig \"OneByteAfterFidFmt\"=hex:02",
        "ADCDevices\\ENG07\\DevConfig \"OneByteAfterFidFmt\"=hex:03"}},
      {"the device without a name follows",
       "\xCC\00165A|01|\xDD\xEE\xFF",
       {"ADCDevices\\ENG01\\DevConfig \"OneByteAfterFidFmt\"=hex:01"},
       {kBadIndex}},
      {"port 19", "\xCC|\x13\xEE\xFF", {}, {kBadIndex}},
      {"subsection 2", "\xCC\x02\xFF", {}, {"Subsection index out of bounds"}},
      {"bad frame takes three bytes",
       "\xCC|\3C|xA|01|\xDD\xEE\xFF",
       {"ADCPorts\\3\\DevConfig \"OneByteAfterFidFmt\"=hex:01"},
       {kBadFrame}},
      {"bad format takes three bytes",
       "\xCC|\3A\x03xA|01|\xDD\xEE\xFF",
       {"ADCPorts\\3\\DevConfig \"OneByteAfterFidFmt\"=hex:01"},
       {kBadFrame}},
      {"no end of section", "\xCC|\3A|01|\xDD\xEE", {}, {kEnd}},
      {"no end of block", "\xCC|\3A|01|", {}, {kBlockEnd, kEnd}},
      {"value without end", "\xCC|\3A|01", {}, {kEntryEnd, kBlockEnd, kEnd}},
      {"only the marker", "\xCC", {}, {kEnd}},
      {"an early end takes the direct section with it",
       "\xBB|\x05|\xFF\xCC|",
       {},
       {kBlockEnd, kEnd}},
      {"a direct section behind makes it good",
       "\xCC\x02\xFF\xBB|\x05|\xFF",
       {"Decodes \"ThreadPriority\"=dword:00000005"},
       {"Subsection index out of bounds"}},
  };
  for (auto& [what, file, writes, errors] : cases) {
    SCOPED_TRACE(what);
    std::ranges::replace(file, '|', '\0');
    for (std::string& write : writes) {
      if (!write.starts_with("HKEY")) write.insert(0, kBase);
    }
    EXPECT_EQ(Update(file), writes);
    EXPECT_EQ(ErrorLines(), errors);
  }
}

TEST_F(ConfigStoreUpdate, KeepsTheTwoBackslashesOfPortZero) {
  EXPECT_EQ(Update("\xCC\x00\x00"
                   "A\x00"
                   "01\0\xDD\xEE\xFF"sv),
            std::vector<std::string>{std::string(kBase) +
                                     "ADCPorts\\DevConfig \"OneByteAfterFidFmt\"=hex:01"});
  EXPECT_EQ(TraceLines("DSCP Key").front(),
            "DSCP Key HKEY_LOCAL_MACHINE\\Software\\Dravonel\\"
            "ADCPorts\\\\DevConfig : OneByteAfterFidFmt type 0 found");
}

TEST_F(ConfigStoreUpdate, WarnsOfEntriesThatOverwriteAndKeepsBoth) {
  EXPECT_EQ(Update("\xCC\x00\x03"
                   "A\x00"
                   "01\0"
                   "B\x00"
                   "02\0"
                   "B\x01"
                   "03\0"
                   "A\x01"
                   "04\0"
                   "\xDD\x03"
                   "A\x00"
                   "05\0\xDD\xEE\xFF"sv)
                .size(),
            5u);
  const std::string port = std::string(kBase) + "ADCPorts\\3\\";
  EXPECT_EQ(LinesBehind("0x83F00000 "),
            (std::vector<std::string>{"Overwriting One Byte write for " + port + "CntrlCmdConfig",
                                      "Overwriting Two Byte write for " + port + "DevConfig"}))
      << "a new block begins anew";
}

TEST_F(ConfigStoreUpdate, TracesEveryStepInOrder) {
  Update(
      "\xBB\xAB"
      "K:V\0\xFE\xFF\xFF\xCC\x00\x03"
      "A\x00"
      "01\0\xDD\xEE\xFF"sv);
  const std::string path = std::string(kBase) + "ADCPorts\\3\\DevConfig";
  EXPECT_EQ(CategorisedLines(),
            (std::vector<std::string>{
                "0x43F00000 Entry PALMFGOpt_ConfigStoreRegUpdate",
                "0x43F00000 Entry ConfigStoreRegUpdate()",
                "0x43F00000 CDCECFGParser: Config Store DCECFG present",
                "0x03F00000 Entry Parsing direct registry section...",
                "0x43F00000 Literal Key " + std::string(kBase) + "K : V type 2 found",
                "0x43F00000 Value = -2",
                "0x03F00000  Exit Parsing direct registry section...",
                "0x43F00000  Entry Parsing DSCP registry section...",
                "0x43F00000 DSCP Key " + path + " : OneByteAfterFidFmt type 0 found",
                "0x43F00000 Value = 01",
                "0x43F00000  Exit Parsing DSCP registry section...",
                "0x43F00000 CDCECFGParser::ParseFile. Config store file parsing complete",
                "0x43F00000 Setting 2 registry keys from Config Store.",
                "0x43F00000 " + std::string(kBase) + "K:V=-2",
                "0x43F00000 " + path + ":OneByteAfterFidFmt=01",
                "0x43F00000 Exit ConfigStoreRegUpdate()",
                "0x43F00000 Exit PALMFGOpt_ConfigStoreRegUpdate",
            }));
}

TEST_F(ConfigStoreUpdate, SkipsWhatDoesNotFitAndGoesOnBehindIt) {
  const std::string good =
      "\xAB"
      "K:V" +
      "\0\x01\0"s;
  const auto literal = [](const std::string& key, const std::string& value) {
    return "\xAA" + key + '\0' + value + '\0';
  };
  struct Case {
    const char* what;
    std::string entry;
    std::size_t writes;
  };
  const std::string path(216, 'p');  // with the base 253 characters, with its end 255
  const std::array cases{
      Case{"path at its limit", literal(path + "pp:v", "x"), 2},
      Case{"path over its limit", literal(path + "ppp:v", "x"), 1},
      Case{"name at its limit", literal("k:" + std::string(63, 'n'), "x"), 2},
      Case{"name over its limit", literal("k:" + std::string(64, 'n'), "x"), 1},
      Case{"value at its limit", literal("k:v", std::string(255, 'x')), 2},
      Case{"value over its limit", literal("k:v", std::string(256, 'x')), 1},
      Case{"key text over its limit", literal(std::string(250, 'k') + ":valuen", "x"), 1},
      Case{"root alone", literal("HKEY_USERS:v", "x"), 1},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(Update("\xBB" + test.entry + good + '\xFF').size(), test.writes) << test.what;
    EXPECT_EQ(ErrorLines().size(), 2 - test.writes) << test.what;
  }
}

TEST_F(ConfigStoreUpdate, SkipsWhatDoesNotFitInABlockAndGoesOnBehindIt) {
  const std::string good =
      "A\x01"
      "0203\0\xDD\xEE\xFF"s;
  const auto block_of = [&](std::string entry) {
    return "\xCC\x00\x03"s.append(entry.append(good));
  };
  const std::string names[] = {std::string(63, 'n'), std::string(64, 'n')};
  const std::string digits[] = {std::string(254, '0'), std::string(256, '0')};
  for (const std::size_t bad : {0U, 1U}) {
    EXPECT_EQ(Update(block_of("A\x02"s.append(names[bad])
                                  .append("\0"
                                          "04\0"s)))
                  .size(),
              2 - bad);
    EXPECT_EQ(ErrorLines().size(), bad) << "of the name";
    EXPECT_EQ(Update(block_of("A\x00"s.append(digits[bad]).append("\0"s))).size(), 2 - bad);
    EXPECT_EQ(ErrorLines().size(), bad) << "of the value";
  }
}

TEST_F(ConfigStoreUpdate, CutsBinaryDataAt64Bytes) {
  const std::string digits(2 * 64 + 20, 'F');
  const std::vector<std::string> writes = Update(
      "\xBB\xAC"
      "K:V" +
      "\0"s + digits + "\0\xFF"s);
  ASSERT_EQ(writes.size(), 1u);
  EXPECT_EQ(device.registry().FindValue(std::string(kBase) + "K", "V")->data,
            std::vector<std::uint8_t>(64, 0xFF));
}

TEST_F(ConfigStoreUpdate, StopsAt256Records) {
  std::string file = "\xBB";
  for (int entry = 0; entry < 300; ++entry) file.append("\0\x05\0"sv);
  ASSERT_LE(file.size(), kLargestFile);
  EXPECT_EQ(Update(file + '\xFF').size(), kMostRecords);
}

TEST_F(ConfigStoreUpdate, RefusesAFileThatFillsTheBuffer) {
  std::string file = "\xBB" + "\0\x05\0\xFF"s;
  file.resize(kLargestFile, ' ');
  EXPECT_EQ(Update(file).size(), 1u);
  EXPECT_EQ(Update(file + ' ').size(), 0u);
  EXPECT_EQ(ErrorLines(), std::vector<std::string>{"CDCECFGParser: Config Store DCECFG too large"});
}

TEST_F(ConfigStoreUpdate, SaysThatThereIsNoFile) {
  EXPECT_EQ(Update().size(), 0u);
  EXPECT_EQ(ErrorLines(),
            std::vector<std::string>{"CDCECFGParser: Config Store DCECFG not present"});
}

TEST_F(ConfigStoreUpdate, WritesNothingWhereACallOnTheWayFails) {
  const std::string file = "\xBB" + "\0\x05\0\xFF"s;
  for (const char* call : {"CreateFileW", "ReadFile", "malloc"}) {
    device.PlanFault({.call = call});
    EXPECT_EQ(Update(file).size(), 0u) << call;
    device.ClearFaults();
    EXPECT_EQ(TraceLines().back(), "Exit PALMFGOpt_ConfigStoreRegUpdate");
  }
  EXPECT_EQ(ErrorLines().size(), 0u) << "the allocation fails quietly";
}

TEST_F(ConfigStoreUpdate, DoesNotWriteToAKeyThatCannotBeCreated) {
  device.PlanFault({.call = "RegCreateKeyExW", .on = "\\B"});
  EXPECT_EQ(Update("\xBB\xAB"
                   "A:1\0\x01\0\xAB"
                   "B:2\0\x02\0\xAB"
                   "C:3\0\x03\0\xFF"sv),
            (std::vector<std::string>{std::string(kBase) + "A \"1\"=dword:00000001",
                                      std::string(kBase) + "C \"3\"=dword:00000003"}));
  EXPECT_EQ(TraceLines(std::string(kBase) + "B:2=2").size(), 1u)
      << "its line is traced all the same";
}

// What damage may do: entries are lost or read as others, but what is written is what was
// announced, and nothing is where the parse failed.
class DamagedConfigStore : public ConfigStoreUpdate {
 protected:
  void CheckDamaged(const std::string& file) {
    const std::size_t writes = Update(file).size();
    const std::vector<std::string> announced = TraceLines("Setting ");
    ASSERT_LE(announced.size(), 1u);
    const std::size_t expected = announced.empty() ? 0 : std::stoul(announced[0].substr(8));
    ASSERT_EQ(writes, expected);
    ASSERT_LE(writes, kMostRecords);
  }

  const std::string sound =
      "\xBB\xAB"
      "Decodes:Depth\0\x05\0\xAA"
      "HKEY_USERS\\K:V\0text\0\xAC"
      "K:B\0"
      "0A0B\0\x03\x01\0\xFF"
      "\xCC\x00\x00"
      "A\x00"
      "01\0"
      "B\x01"
      "0203\0"
      "A\x02Name\0"
      "04\0\xDD\x05"
      "A\x00"
      "11\0\xDD\xEE"
      "\x01\x07"
      "B\x00"
      "21\0\xDD\xEE\xFF"s;
};

TEST_F(DamagedConfigStore, CutAtEveryByte) {
  ASSERT_EQ(Update(sound).size(), 9u);
  for (std::size_t length = 0; length < sound.size(); ++length) {
    CheckDamaged(sound.substr(0, length));
  }
}

TEST_F(DamagedConfigStore, EveryByteChangedToEachMarker) {
  for (const char marker : "\xAA\xAB\xAC\xBB\xCC\xDD\xEE\xFF\0"sv) {
    for (std::size_t at = 0; at < sound.size(); ++at) {
      std::string damaged = sound;
      damaged[at] = marker;
      CheckDamaged(damaged);
    }
  }
}

}  // namespace
