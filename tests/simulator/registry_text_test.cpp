#include "platform/sim/kernel/registry_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "platform/sim/text.h"
#include "platform/wince.h"

namespace {

using sim::ExportRegistryText;
using sim::ImportRegistryText;
using Bytes = std::vector<std::uint8_t>;

// Lists every key, value, type and byte in order, without the text that is tested.
void Describe(const sim::RegistryKey& key, std::u16string& text) {
  text += u"[" + key.Path() + u"]";
  for (const sim::RegistryValue& value : key.values()) {
    text += u"<" + value.name + u":" + static_cast<char16_t>(value.type >> 16) +
            static_cast<char16_t>(value.type) + u">" +
            std::u16string(value.data.begin(), value.data.end());
  }
  for (const auto& child : key.keys()) Describe(*child, text);
}

std::u16string Describe(const sim::Registry& registry) {
  std::u16string text;
  for (unsigned root = 0; root < 4; ++root) Describe(*registry.root(root), text);
  return text;
}

TEST(RegistryText, ExportAndImportGiveAnEqualRegistry) {
  sim::Registry registry;
  const auto add = [&](std::u16string_view path, std::u16string_view name, std::uint32_t type,
                       const Bytes& data) {
    sim::Registry::Create(registry.root(2), path).key->SetValue(name, type, data);
  };
  // A parent without values between its siblings, in spelling and order that no sorting gives.
  registry.Create(R"(HKLM\Software\zebra\Deep\Deeper)");
  registry.SetDword("HKLM\\Software\\Apple", "Second", 0x8000001E);
  registry.SetString("HKLM\\Software\\ZEBRA", "", "the unnamed value");
  registry.SetString("HKCU\\ControlPanel", "Quotes", "say \"C:\\Temp\" ; [x] \xC3\xA9");
  registry.SetString("HKEY_USERS", "of a root", "");
  registry.Create("HKCR\\empty");
  add(u"ADCDevices ", u"8-bit text", REG_SZ, {'t', 'e', 'x', 't'});
  add(u"ADCDevices ", u"no terminator", REG_SZ, {'t', 0});
  add(u"ADCDevices ", u"two texts", REG_SZ, {'a', 0, 0, 0, 'b', 0, 0, 0});
  add(u"ADCDevices ", u"two lines", REG_SZ, {'a', 0, '\n', 0, 'b', 0, 0, 0});
  add(u"ADCDevices ", u"half a pair", REG_SZ, {0x00, 0xD8, 0, 0});
  add(u"ADCDevices ", u"nothing", REG_SZ, {});
  add(u"ADCDevices ", u"short number", REG_DWORD, {1, 2, 3});
  add(u"ADCDevices ", u"list", REG_MULTI_SZ, {'a', 0, 0, 0, 0, 0});
  add(u"ADCDevices ", u"odd type", 0xFFFF0001, {1});
  for (unsigned size = 0; size < 100; ++size) {
    add(u"Sizes", std::u16string(size, u'n'), REG_BINARY, Bytes(size, 0xA5));
  }
  // Names from a damaged file: with line ends, with a comment's semicolon, with half a pair.
  add(u"line\nend\\a] ; b\\\"quoted\"\\\xD800", u"\xDC00\n=\"\\", REG_BINARY, {1, 2});

  const std::string text = ExportRegistryText(registry);
  sim::Registry copy;
  EXPECT_EQ(ImportRegistryText(copy, text), std::vector<std::string>());
  EXPECT_EQ(Describe(copy), Describe(registry));
  EXPECT_EQ(ExportRegistryText(copy), text);
}

TEST(RegistryText, ExportIsReadable) {
  sim::Registry registry;
  registry.SetDword("HKLM\\Software\\Key", "Number", 30);
  registry.SetString("HKLM\\Software\\Key", "", "a\\b");
  registry.SetString("HKLM\\Software\\Key", "Lines", "a\n");
  registry.SetBinary("HKLM\\Software\\Key", "Bytes", Bytes(25, 0x0A));
  EXPECT_EQ(ExportRegistryText(registry),
            "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\Software\\Key]\n\"Number\"=dword:0000001e\n"
            "@=\"a\\\\b\"\n\"Lines\"=hex(1):61,00,0a,00,00,00\n"
            "\"Bytes\"=hex:0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,0a,\\\n"
            "  0a,0a,0a\n");
}

struct ValueForm {
  const char* text;
  std::uint32_t type;
  Bytes data;
};

TEST(RegistryText, ImportsEveryFormOfValue) {
  const std::vector<ValueForm> forms = {
      {R"("v"="t\"\\")", REG_SZ, {'t', 0, '"', 0, '\\', 0, 0, 0}},
      {R"( "V" = "" ; behind it)", REG_SZ, {0, 0}},
      {"\"v\"=dword:8000001E", REG_DWORD, {0x1E, 0, 0, 0x80}},
      {"\"v\"=DWORD:7;x", REG_DWORD, {7, 0, 0, 0}},
      {"\"v\"=hex:", REG_BINARY, {}},
      {"\"v\"=hex:0a, b ,FF ; bytes", REG_BINARY, {0x0A, 0x0B, 0xFF}},
      {"\"v\"=hex:01,\\ ; one\r\n\t02,\\\r\n03", REG_BINARY, {1, 2, 3}},
      {"\"v\"=hex(b):01", 11, {1}},
      {"\"v\"=hex(80000000):", 0x80000000, {}},
      {R"("v"=multi_sz:"a", "b;" ; two)", REG_MULTI_SZ, {'a', 0, 0, 0, 'b', 0, ';', 0, 0, 0, 0, 0}},
  };
  for (const ValueForm& form : forms) {
    sim::Registry registry;
    const std::string text = std::string("[HKLM\\Key]\n") + form.text;
    EXPECT_EQ(ImportRegistryText(registry, text), std::vector<std::string>()) << form.text;
    const sim::RegistryValue* value = registry.FindValue("HKLM\\key", "v");
    ASSERT_NE(value, nullptr) << form.text;
    EXPECT_EQ(value->type, form.type) << form.text;
    EXPECT_EQ(value->data, form.data) << form.text;
  }
}

TEST(RegistryText, ReadsUtf8AndBothKindsOfUtf16) {
  const std::u16string text = u"REGEDIT4\r\n[HKLM\\K\xE9]\r\n\"n\"=\"\xD83D\xDE00\"";
  std::string little = "\xFF\xFE";
  std::string big = "\xFE\xFF";
  for (const char16_t unit : text) {
    little += {static_cast<char>(unit), static_cast<char>(unit >> 8)};
    big += {static_cast<char>(unit >> 8), static_cast<char>(unit)};
  }
  const std::string utf8 = sim::ToUtf8(text);
  for (const std::string& bytes : {little, big, utf8, "\xEF\xBB\xBF" + utf8}) {
    sim::Registry registry;
    EXPECT_EQ(ImportRegistryText(registry, bytes), std::vector<std::string>());
    EXPECT_EQ(registry.GetString("HKLM\\K\xC3\x89", "N"), "\xF0\x9F\x98\x80");
  }
}

TEST(RegistryText, DeletesValuesAndTrees) {
  sim::Registry registry;
  registry.SetDword("HKLM\\Old\\Below", "v", 1);
  registry.SetDword("HKLM\\Kept", "gone", 1);
  registry.SetDword("HKLM\\Kept", "", 2);
  registry.SetDword("HKLM\\Kept", "stays", 3);
  const auto below = registry.Find("HKLM\\Old\\Below");
  EXPECT_EQ(ImportRegistryText(registry,
                               "[-HKLM\\Old] ; see [list]\n[-HKLM\\Missing]\n[HKLM\\Kept]\n"
                               "\"Gone\"=-\n@=-\n\"missing\"=- ;"),
            std::vector<std::string>());
  EXPECT_TRUE(below->deleted());
  EXPECT_EQ(ExportRegistryText(registry),
            "REGEDIT4\n\n[HKEY_LOCAL_MACHINE\\Kept]\n\"stays\"=dword:00000003\n");
}

TEST(RegistryText, BadLinesChangeNothingAndAreReportedByNumber) {
  const std::vector<std::string> lines = {
      "nonsense",
      "[HKEY_LOCAL_MACHINE\\Open",
      "[HKEY_NOWHERE\\Key]",
      "[]",
      "[-HKEY_LOCAL_MACHINE]",
      R"(["HKLM\\Quoted])",
      "[HKLM\\Latin-1 \xE9]",
      "[HKLM\\Key] behind",
      "\"no end",
      "\"no value\"",
      "\"no form\"=7",
      R"("lone backslash"="C:\Temp")",
      R"("behind"="text" text)",
      "\"delete\"=-1",
      "\"digits\"=dword:",
      "\"digits\"=dword:123456789",
      "\"digits\"=dword:0x1",
      "\"byte\"=hex:0a,,0b",
      "\"byte\"=hex:0a,",
      "\"byte\"=hex:100",
      "\"type\"=hex(z):00",
      "\"type\"=hex(7:00",
      R"("list"=multi_sz:"a",)",
      "\"list\"=multi_sz:a",
      R"("cut"=hex:01,\)",
      "\"swallowed line\"=hex:01,\\\n  xx,\\\n  03",
      "\"Latin-1\"=\"\xE9\"",
      "\"kept\"=dword:00000002 2",
  };
  const std::string before = "[HKLM\\Key]\n\"kept\"=dword:1\n";
  sim::Registry expected;
  ASSERT_TRUE(ImportRegistryText(expected, before).empty());
  for (const std::string& line : lines) {
    sim::Registry registry;
    const auto errors = ImportRegistryText(registry, before + line);
    ASSERT_EQ(errors.size(), 1U) << line;
    EXPECT_EQ(errors.front().substr(0, 3), "3: ") << line;
    EXPECT_EQ(Describe(registry), Describe(expected)) << line;
  }
}

TEST(RegistryText, ValuesBelowABadKeyBelongToNone) {
  sim::Registry registry;
  const auto errors = ImportRegistryText(
      registry,
      "\"early\"=dword:1\n[HKLM\\Key]\n[Bad\\Key]\n\"v\"=dword:1\n[-HKLM\\Other]\n@=\"x\"\n"
      "[HKLM\\Key]\n\"cut\"=hex:01,\\\n[HKLM\\Next]\n\"v\"=dword:5");
  std::string lines;
  for (const std::string& error : errors) lines += error.substr(0, 2);
  EXPECT_EQ(lines, "1:3:4:6:8:");
  EXPECT_TRUE(registry.Find("HKLM\\Key")->values().empty());
  EXPECT_EQ(registry.GetDword("HKLM\\Next", "v"), 5U);
}

TEST(RegistryText, AnEndlessPathIsRefused) {
  sim::Registry registry;
  std::string path = "[HKLM";
  for (int i = 0; i < 100000; ++i) path += "\\a";
  EXPECT_EQ(ImportRegistryText(registry, path + "]").size(), 1U);
  EXPECT_TRUE(registry.root(2)->keys().empty());
}

}  // namespace
