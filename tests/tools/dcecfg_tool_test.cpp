// The configuration-store tool: text to file, file to text, and what the device would make of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/dcecfg/check.h"
#include "tools/dcecfg/text_form.h"

namespace {

using Bytes = std::vector<BYTE>;

constexpr std::array<BYTE, 14> kMarkers = {0x00, 0x01, 0x02, 0x09, 0x41, 0x42, 0xAA,
                                           0xAB, 0xAC, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};

std::string ReadSample(const std::string& name) {
  std::ifstream file(PROJECT_DIR "/devices/rm21/" + name, std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

Bytes SampleFile() {
  const std::string content = ReadSample("files/ConfigStore/dcecfg");
  return {content.begin(), content.end()};
}

std::string Repeat(std::size_t count, std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

std::string InDirect(const std::string& line) {
  return "direct {\n" + line + "\n}\n";
}
std::string InDscp(const std::string& block, const std::string& line) {
  return "dscp {\n" + block + " {\n" + line + "\n}\n}\n}\n";
}

void ExpectRoundTrip(const Bytes& file) {
  const std::string text = dcecfg::Dump(file);
  try {
    ASSERT_EQ(dcecfg::Build(text), file) << text;
  } catch (const dcecfg::TextError& error) {
    FAIL() << error.line() << ": " << error.what() << '\n' << text;
  }
}

TEST(DcecfgTool, BuildSaysWhereATextIsWrong) {
  struct Case {
    std::string text;
    std::string error;
  };
  const std::string limit = Repeat(256, "indexed 0 1\n");
  const Case cases[] = {
      {"# nothing\n\n  dircet {\n}", "3:3: dircet cannot stand here; expected direct { or dscp {"},
      {"direct\n", "1:7: { is missing"},
      {"direct {\n}", "2:1: direct { is empty; the device would take its end for an entry"},
      {"direct {\nindexed 0 1\n", "1:1: direct { has no closing }"},
      {"}", "1:1: there is nothing to close"},
      {"truncated", "1:1: truncated stands where a } is missing"},
      {"dscp {\ntruncated\n}", "3:1: nothing stands behind truncated"},
      {"bytes 00\noversized", "2:1: oversized stands in front of all else"},
      {"bytes 00 1", "1:10: 1 hexadecimal digits; two make a byte"},
      {InDirect("dword \"A:B\" 5 6"),
       "2:15: the line goes on behind its end; each statement has its own line"},
      {InDirect("dword \"A:B\" 32768"),
       "2:13: a DWORD is a number from -32768 to 32767, or 0x0 to 0xFFFF, of which 0x8000 and up "
       "are negative"},
      {InDirect("dword A:B 1"), "2:7: the key, \"KEY:NAME\", stands in quotes"},
      {InDirect("dword \":B\" 1"),
       "2:7: the colon stands in front of the value name: \"KEY:NAME\""},
      {InDirect(R"(dword "HKEY_USERS:A\\B" 1)"),
       R"(2:7: no key below the root stands in front of the colon: "HKEY_...\\KEY:NAME")"},
      {InDirect("dword \"HKEYBOARD:B\" 1"),
       "2:7: HKEYBOARD is no root; the roots are HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, "
       "HKEY_CLASSES_ROOT, HKEY_USERS"},
      {InDirect("dword \"A:" + Repeat(64, "n") + "\" 1"),
       "2:7: a value name of 64 characters; at most 63 fit"},
      {InDirect("dword \"" + Repeat(219, "k") + ":n\" 1"),
       "2:7: the key's full path has 256 characters; at most 255 fit"},
      {InDirect(R"(dword "HKEY_USERS\\)" + Repeat(244, "k") + ":\" 1"),
       "2:7: 256 characters of key and value name; at most 255 fit"},
      {InDirect(R"(string "A:B" ")" + Repeat(256, "t") + "\""),
       "2:14: a text of 256 characters; at most 255 fit"},
      {InDirect(R"(string "A:B" "open)"), "2:14: the text has no closing quote"},
      {InDirect(R"(string "A:B" "C:\Temp")"),
       R"(2:17: in a text a backslash is \\, a quote \" and a byte \xNN)"},
      {InDirect(R"(string "A:B" "\x00")"),
       "2:15: a text ends at its first zero byte, so it holds no \\x00"},
      {InDirect("string \"A:B\" \"\xC3\xA9\""),
       "2:15: a text holds printable ASCII; write any other of its bytes as \\xNN"},
      {InDirect("binary \"A:B\" 0A1"), "2:14: 3 hexadecimal digits; two make a byte"},
      {InDirect("binary \"A:B\" 0G"),
       "2:14: binary data are hexadecimal digits, two for a byte, such as 0A01FF"},
      {InDirect("binary \"A:B\" " + Repeat(65, "00")),
       "2:14: 65 bytes of binary data; at most 64 fit"},
      {InDirect("binary \"A:B\""), "2:13: the hexadecimal data is missing"},
      {InDirect("indexed 9 1"), "2:9: the index is a number from 0 to 8"},
      {InDscp("ports {\nport 19", "DevConfig one-byte 00"),
       "3:6: the port is a number from 0 to 18"},
      {InDscp("devices {\ndevice 54", "DevConfig one-byte 00"),
       "3:8: a device, unless it has a name, is a number from 0 to 53"},
      {InDscp("devices {\ndevice ENG07", "DevConfig one-byte 00"),
       "3:8: ENG07 is the name of the devices 46 and 47; give the number"},
      {InDscp("ports {\nport 1", "DevConfig three-byte 00"),
       "4:11: a format is one-byte, two-byte or string \"NAME\""},
      {InDirect(limit + "indexed 0 1"), "258:1: this is value 257; the device takes at most 256"},
      {InDirect("bytes " + Repeat(1022, "00") + "\nindexed 0 1"),
       "3:1: the file has 1026 bytes here; the device takes at most 1023"},
  };
  for (const Case& test : cases) {
    try {
      static_cast<void>(dcecfg::Build(test.text));
      ADD_FAILURE() << "accepted: " << test.text;
    } catch (const dcecfg::TextError& error) {
      EXPECT_EQ(
          std::to_string(error.line()) + ':' + std::to_string(error.column()) + ": " + error.what(),
          test.error);
    }
  }
}

// What just fits, built and given to the device's parser.
TEST(DcecfgTool, BuildsWhatTheDeviceJustTakes) {
  struct Case {
    std::string text;
    std::size_t values;
    std::string part_of_check;
  };
  const Case cases[] = {
      {InDirect("dword \"A:B\" -32768"), 1, "\"B\"=dword:ffff8000"},
      {InDirect("dword \"A:B\" 0xFFFF"), 1, "\"B\"=dword:ffffffff"},
      {InDirect("dword \"A:B:C\" 32767"), 1, "\"B:C\"=dword:00007fff"},
      {InDirect("dword \"A:\" 1"), 1, "@=dword:00000001"},
      {InDirect("dword \"A:" + Repeat(63, "n") + "\" 1"), 1, Repeat(63, "n")},
      {InDirect("dword \"" + Repeat(218, "k") + ":n\" 1"), 1, Repeat(218, "k")},
      {InDirect(R"(dword "HKEY_USERS\\)" + Repeat(243, "k") + ":\" 1"), 1, Repeat(243, "k")},
      {InDirect(R"(string "A:B" ")" + Repeat(255, "t") + "\""), 1, "; \"" + Repeat(255, "t")},
      {InDirect(R"(string "A:B" "\xE9\"\\#" # ")"), 1, "\"B\"=hex(1):e9,22,5c,23"},
      {InDirect("binary \"A:B\" " + Repeat(64, "aB")), 1, "hex:ab,ab"},
      {InDirect(R"(binary "A:B" "")"), 1, "\"B\"=hex:\n"},
      {InDirect("indexed 8 0"), 1, "EAC]\n\"ImagerNRTPriority\"=dword:00000000"},
      {InDirect(Repeat(256, "indexed 0 1\n")), 256, "256 values would be written; 0 errors"},
      {InDirect("indexed 0 1") + "bytes " + Repeat(1018, "00"), 1, ""},
      {InDscp("ports {\nport 18", "DevConfig one-byte 00"), 1, R"(\ADCPorts\18\DevConfig])"},
      {InDscp("devices {\ndevice 53", "DevConfig one-byte 00"), 1, "\\ENG01\\DevConfig]"},
      {InDscp("devices {\r\n\tdevice \"SR Dravonel Scanner\"", R"(DevConfig string "" "")"), 1,
       "\\SR Dravonel Scanner\\DevConfig\\StringAfterFidFmt]\n@=hex:\n"},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.text);
    const Bytes file = dcecfg::Build(test.text);
    const dcecfg::CheckReport report = dcecfg::Check(file);
    EXPECT_FALSE(report.refused);
    EXPECT_EQ(report.values, test.values);
    EXPECT_NE(report.text.find(test.part_of_check), std::string::npos) << report.text;
    EXPECT_EQ(report.errors, 0U) << report.text;
    ExpectRoundTrip(file);
  }
}

TEST(DcecfgTool, ABuiltDumpGivesTheSameBytesForTheSampleHoweverDamaged) {
  const Bytes sample = SampleFile();
  ASSERT_FALSE(sample.empty());
  for (std::size_t at = 0; at < sample.size(); ++at) {
    ExpectRoundTrip(Bytes(sample.begin(), sample.begin() + static_cast<std::ptrdiff_t>(at)));
    Bytes changed = sample;
    changed[at] = kMarkers.at(at % kMarkers.size());
    ExpectRoundTrip(changed);
    if (HasFatalFailure()) return;
  }
}

TEST(DcecfgTool, ABuiltDumpGivesTheSameBytesForAnyBytes) {
  std::mt19937 random(20);  // NOLINT: the same files in every run
  const auto below = [&](std::size_t bound) { return random() % bound; };
  for (int round = 0; round < 5000; ++round) {
    Bytes file(below(round % 50 == 0 ? 3000 : 60));
    std::generate(file.begin(), file.end(), [&] {
      return below(4) == 0 ? static_cast<BYTE>(random()) : kMarkers.at(below(kMarkers.size()));
    });
    ExpectRoundTrip(file);
    if (HasFatalFailure()) return;
  }
  Bytes many = {0xBB};
  for (int i = 0; i < 400; ++i) many.insert(many.end(), {0x00, 0x05, 0x00});
  ExpectRoundTrip(many);
}

TEST(DcecfgTool, DumpShowsWellFormedStatementsAroundTheFaultyOnes) {
  const Bytes file = {0x07, 0xBB, 0x0C, 0x01, 0xAB, 'K',  0,  5,    0,    0xAC,
                      'B',  0,    '1',  0,    0xFF, 0xCC, 1,  0x1A, 'A',  2,
                      'N',  0,    '0',  'A',  0,    0xDD, 46, 'C',  0x00, 0x33};
  EXPECT_EQ(dcecfg::Dump(file),
            "bytes 07  # skipped\n"
            "direct {\n"
            "  bytes 0C 01  # no key has index 12\n"
            "  dword \"K\" 5\n"
            "  bytes AC 42 00 31 00  # 1 hexadecimal digits; two make a byte\n"
            "}\n"
            "dscp {\n"
            "  devices {\n"
            "    device BTScanner {\n"
            "      DevConfig string \"N\" 0A\n"
            "    }\n"
            "    device 46 {\n"
            "      bytes 43 00 33  # no such frame type or format\n"
            "      truncated  # the file ends here\n");
}

TEST(DcecfgTool, TheSamplesTextAndFileAgree) {
  EXPECT_EQ(dcecfg::Build(ReadSample("dcecfg.txt")), SampleFile());
}

TEST(DcecfgTool, ChecksADamagedFile) {
  using std::string_view_literals::operator""sv;
  const std::string_view content =
      "\xBB\x0C\x01\xAAK:N\0te\1xt\0\xAB"
      "D\0\xFE\xFF\xFF\xCC\0\x00"
      "A\0"
      "0A\0B\0"
      "0B\0\xDD\xEE\xFF\xBB\xACH:odd\0"
      "123\0\x09\x09\xAA"sv;
  const auto report = dcecfg::Check(Bytes(content.begin(), content.end()));
  EXPECT_FALSE(report.ok());
  EXPECT_EQ(report.text, R"(offset 1: error: Index 12 out of bounds
offset 1: error: No key processed.
offset 29: warning: Overwriting One Byte write for HKEY_LOCAL_MACHINE\Software\Dravonel\ADCPorts\\CntrlCmdConfig
offset 48: error: Index 9 out of bounds
offset 48: error: No key processed.
offset 51: error: Unexpected end of file
offset 51: error: No key processed.
[HKEY_LOCAL_MACHINE\Software\Dravonel\K]
; "te\x01xt"
"N"=hex(1):74,65,01,78,74
[HKEY_LOCAL_MACHINE\Software\Dravonel\D]
"Default"=dword:fffffffe
[HKEY_LOCAL_MACHINE\Software\Dravonel\ADCPorts\DevConfig]
"OneByteAfterFidFmt"=hex:0a
[HKEY_LOCAL_MACHINE\Software\Dravonel\ADCPorts\CntrlCmdConfig]
"OneByteAfterFidFmt"=hex:0b
[HKEY_LOCAL_MACHINE\Software\Dravonel\H]
"odd"=hex:12,03
5 values would be written; 6 errors, 1 warning
)");
}

TEST(DcecfgTool, SaysWhichKeyTheRegistryCannotHave) {
  const auto check = [](const std::string& key) {
    const std::string file = "\xBB\xAB" + key + std::string("\0\x05\0\xFF", 4);
    return dcecfg::Check(Bytes(file.begin(), file.end()));
  };
  // Below HKEY_LOCAL_MACHINE\Software\Dravonel.
  EXPECT_TRUE(check("1\\2\\3\\4\\5\\6\\7\\8\\9\\A\\B\\C\\D\\E:n").ok());
  const auto report = check("1\\2\\3\\4\\5\\6\\7\\8\\9\\A\\B\\C\\D\\E\\F:n");
  EXPECT_FALSE(report.ok());
  EXPECT_TRUE(report.text.starts_with("; not written, its key is too deep: \"HKEY_LOCAL_MACHINE"));
  EXPECT_TRUE(report.text.ends_with("\n0 values would be written; 1 error, 0 warnings\n"));
}

TEST(DcecfgTool, RefusesWhatTheDeviceRefuses) {
  struct Case {
    Bytes file;
    std::string text;
  };
  const Case cases[] = {
      {Bytes(1024, 0xBB), "offset 0: error: CDCECFGParser: Config Store DCECFG too large\n"},
      {{0xBB, 0, 5, 0, 0xFF, 0xCC, 0},
       "offset 7: error: Abnormal subsection end\n"
       "offset 7: error: Unexpected end of file\n"},
  };
  for (const Case& test : cases) {
    const auto report = dcecfg::Check(test.file);
    EXPECT_FALSE(report.ok());
    EXPECT_EQ(report.values, 0U);
    EXPECT_EQ(report.text.substr(0, test.text.size()), test.text);
    EXPECT_EQ(report.text.find("[HKEY"), std::string::npos);
  }
}

// The device takes -1 for a number of one byte, and then reads this byte again.
TEST(DcecfgTool, DumpShowsANumberOfOneByteAsTheDeviceTakesIt) {
  const Bytes literal{0xBB, 0xAB, 'A', ':', 'B', 0, 0xFF};
  EXPECT_EQ(dcecfg::Dump(literal),
            "direct {\n"
            "  bytes AB 41 3A 42 00  # dword \"A:B\" -1: the number has one byte only\n"
            "}\n");
  EXPECT_EQ(dcecfg::Check(literal).values, 1u);
  ExpectRoundTrip(literal);

  Bytes indexed{0xBB};
  for (unsigned entry = 0; entry < 256; ++entry) indexed.insert(indexed.end(), {0, 5, 0});
  indexed.insert(indexed.end(), {1, 0xFF});
  const std::string text = dcecfg::Dump(indexed);
  EXPECT_TRUE(text.starts_with("oversized ")) << "the 257th value counts too";
  EXPECT_NE(text.find("  bytes 01  # indexed 1 -1: the number has one byte only\n}\n"),
            std::string::npos)
      << text;
  ExpectRoundTrip(indexed);
}

}  // namespace
