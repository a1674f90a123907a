// The identity of the device: lengths, sources in their order, and answers that cannot be trusted.
#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sim/hardware/hardware.h"
#include "tests/support/device_test.h"

namespace {

using sim::QueryAnswer;
using sim::TextAnswer;

constexpr HRESULT kSourceFailed = -1;
constexpr HRESULT kSourceTooLong = -8;
constexpr const char* kIdentityKey = "HKLM\\Software\\Dravonel\\DVLHWID";

QueryAnswer BytesAnswer(std::vector<std::uint8_t> bytes) {
  return {std::move(bytes), 0, {}};
}

QueryAnswer Lying(QueryAnswer answer, std::uint32_t returned) {
  answer.returned = returned;
  return answer;
}

// A buffer of exactly the stated size between two guards.
template <class Unit>
class GuardedBuffer {
 public:
  explicit GuardedBuffer(std::size_t units) : units_(units + 2 * kGuard, kFill) {}
  ~GuardedBuffer() { EXPECT_TRUE(guards_hold()) << units_.size() - 2 * kGuard << " units"; }
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;

  Unit* data() { return units_.data() + kGuard; }
  // What was written, up to its null; "untouched" where nothing at all was.
  [[nodiscard]] std::string text() const {
    const std::size_t room = units_.size() - 2 * kGuard;
    std::string text;
    for (std::size_t at = 0; at < room && units_[kGuard + at] != 0; ++at) {
      text += static_cast<char>(units_[kGuard + at]);
    }
    return room > 0 && text == std::string(room, static_cast<char>(kFill)) ? "untouched" : text;
  }

 private:
  [[nodiscard]] bool guards_hold() const {
    for (std::size_t at = 0; at < kGuard; ++at) {
      if (units_[at] != kFill || units_[units_.size() - 1 - at] != kFill) return false;
    }
    return true;
  }
  static constexpr Unit kFill = 0x5A;
  static constexpr std::size_t kGuard = 300;
  std::vector<Unit> units_;
};

struct Answer {
  HRESULT result;
  std::string text;
  DWORD length;
  bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* stream) {
  *stream << std::hex << static_cast<std::uint32_t>(answer.result) << " \"" << answer.text << "\" "
          << std::dec << answer.length;
}

// With a buffer of `bytes`, by whichever function takes one.
template <class Unit, class Get>
Answer Ask(const Get& get, DWORD bytes) {
  GuardedBuffer<Unit> buffer(bytes / sizeof(Unit));
  DWORD length = bytes;
  const HRESULT result = get(buffer.data(), &length);
  return {result, buffer.text(), length};
}

class Identity : public DeviceTest {
 protected:
  Identity() {
    hardware.system.oem_information = sim::WideTextAnswer(u"Dravonel RM");
    hardware.system.platform_type = sim::WideTextAnswer(u"pocketPC");
    hardware.system.firmware_information = sim::FirmwareInformation("1.20");
    hardware.parameters = {
        {0x0001, BytesAnswer({0x00, 0x0A, 0x1B, 0x2C, 0x3D, 0x04})},
        {0x0003, BytesAnswer({0x20, 0x14, 0x07, 0x25})},
        {0x000A, TextAnswer("CG21A4")},
        {0x0048, TextAnswer("21190700042")},
        {0x00D5, TextAnswer("RM11")},
        {0x00D6, TextAnswer("RM11 Imager")},
    };
  }

  Answer DetailA(DWORD detail, DWORD bytes = 256) { return DetailA(process, detail, bytes); }
  static Answer DetailA(sim::Process& caller, DWORD detail, DWORD bytes = 256) {
    const auto get = [&](char* buffer, DWORD* length) {
      return caller.exports().PALSysinfo_GetDeviceDetailA(detail, buffer, length);
    };
    return Ask<char>(get, bytes);
  }
  Answer DetailW(DWORD detail, DWORD bytes) {
    const auto get = [&](WCHAR* buffer, DWORD* length) {
      return process.exports().PALSysinfo_GetDeviceDetailW(detail, buffer, length);
    };
    return Ask<WCHAR>(get, bytes);
  }
  // As a process that has asked for nothing yet is told.
  Answer Fresh(DWORD detail) {
    sim::Process caller(device, "fresh.exe");
    return DetailA(caller, detail);
  }

  sim::Hardware& hardware = device.hardware();
  sim::Process process{device};
};

// Each detail in a buffer of the length it asks for, one byte less and one more.
TEST_F(Identity, GivesEachTextAtItsLengthAndNeverBehindIt) {
  struct Case {
    DWORD detail;
    std::string text;
    DWORD length;  // what the A form needs
  };
  const std::vector<Case> cases = {
      {0, "CG21A4", 7},       {1, "21190700042", 12}, {2, "RM11", 5},
      {3, "RM11 Imager", 12}, {4, "1.20", 6},         {5, "pocketPC", 9},
      {6, "5.2.19202", 10},   {7, "07/25/2014", 11},  {9, "CG2121190700042", 16},
      {10, "0a1b2c3d4", 10},
  };
  for (const auto& [detail, text, length] : cases) {
    SCOPED_TRACE(detail);
    for (const DWORD bytes : {length, length + 1}) {
      EXPECT_EQ(DetailA(detail, bytes), (Answer{S_OK, text, length}));
    }
    const auto written = static_cast<DWORD>(2 * text.size() + 2);
    for (const DWORD bytes : {2 * length, 2 * length + 1}) {
      EXPECT_EQ(DetailW(detail, bytes), (Answer{S_OK, text, written}));
    }
    for (const DWORD bytes : {DWORD{0}, length - 1}) {
      const std::string kept = bytes == 0 ? "" : "untouched";
      EXPECT_EQ(DetailA(detail, bytes), (Answer{PAL_SYSINFO_E_TOO_SHORT, kept, length}));
      EXPECT_EQ(DetailW(detail, 2 * bytes), (Answer{PAL_SYSINFO_E_TOO_SHORT, kept, 2 * length}));
    }
    DWORD needed = 0;
    EXPECT_EQ(process.exports().PALSysinfo_GetDeviceDetailA(detail, nullptr, &needed), S_OK);
    EXPECT_EQ(needed, length);
    EXPECT_EQ(process.exports().PALSysinfo_GetDeviceDetailW(detail, nullptr, &needed), S_OK);
    EXPECT_EQ(needed, 2 * length);
    GuardedBuffer<WCHAR> buffer(8);
    EXPECT_EQ(process.exports().PALSysinfo_GetDeviceDetailW(detail, buffer.data(), nullptr),
              PAL_SYSINFO_E_INVALID_INPUT);
    EXPECT_EQ(buffer.text(), "untouched");
    EXPECT_EQ(process.exports().PALSysinfo_GetDeviceDetailA(detail, nullptr, nullptr),
              PAL_SYSINFO_E_INVALID_INPUT);
  }
}

TEST_F(Identity, AnswersUnknownDetailsWhateverTheirArguments) {
  const auto& get = process.exports().PALSysinfo_GetDeviceDetailA;
  for (const DWORD detail : {11u, 12u, 13u}) {
    EXPECT_EQ(DetailA(detail), (Answer{E_NOTIMPL, "untouched", 256}));
    EXPECT_EQ(get(detail, nullptr, nullptr), E_NOTIMPL);
  }
  device.journal().Clear();
  for (const DWORD detail : {14u, 0xFFFFFFFFu}) {
    EXPECT_EQ(DetailA(detail), (Answer{PAL_SYSINFO_E_INVALID_INPUT, "untouched", 256}));
    EXPECT_EQ(DetailW(detail, 512), (Answer{PAL_SYSINFO_E_INVALID_INPUT, "untouched", 512}));
  }
  EXPECT_EQ(CategorisedLines()[1],
            "0xC40F0000 PALSysinfo_GetDeviceDetailA(14,*,*). Input detail invalid. procid:0x1");
}

// Every export asks the source that its name says, in its own kind of text.
TEST_F(Identity, NamesTheSameSourcesInEveryFamily) {
  const sim::Exports& e = process.exports();
  struct Row {
    std::string text;
    const sim::Export<HRESULT(char*, DWORD*)>* ex_a;
    const sim::Export<HRESULT(WCHAR*, DWORD*)>* ex_w;
    const sim::Export<HRESULT(WCHAR*)>* plain;
    const sim::Export<HRESULT(WCHAR*)>* w;
    const sim::Export<HRESULT(char*)>* a;
  };
  const std::vector<Row> rows = {
      {"RM11", &e.PALSysinfo_GetModelExA, &e.PALSysinfo_GetModelExW, &e.PALSysinfo_GetModel,
       &e.PALSysinfo_GetModelW, &e.PALSysinfo_GetModelA},
      {"1.20", &e.PALSysinfo_GetFirmwareVerExA, &e.PALSysinfo_GetFirmwareVerExW,
       &e.PALSysinfo_GetFirmwareVersion, &e.PALSysinfo_GetFirmwareVersionW,
       &e.PALSysinfo_GetFirmwareVersionA},
      {"21190700042", &e.PALSysinfo_GetSerialNumberExA, &e.PALSysinfo_GetSerialNumberExW,
       &e.PALSysinfo_GetSerialNumber, &e.PALSysinfo_GetSerialNumberW,
       &e.PALSysinfo_GetSerialNumberA},
      {"CG21A4", &e.PALSysinfo_GetHwConfigExA, &e.PALSysinfo_GetHwConfigExW,
       &e.PALSysinfo_GetHardwareConfiguration, &e.PALSysinfo_GetHardwareConfigurationW,
       &e.PALSysinfo_GetHardwareConfigurationA},
      {"pocketPC", &e.PALSysinfo_GetOSExA, &e.PALSysinfo_GetOSExW, nullptr, nullptr, nullptr},
      {"5.2.19202", &e.PALSysinfo_GetOSVerExA, &e.PALSysinfo_GetOSVerExW,
       &e.PALSysinfo_GetOperatingSystem, nullptr, nullptr},
      {"0a1b2c3d4", nullptr, nullptr, &e.PALSysinfo_GetEtherMACAddress,
       &e.PALSysinfo_GetEtherMACAddressW, &e.PALSysinfo_GetEtherMACAddressA},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    if (row.ex_a != nullptr) {
      EXPECT_EQ(Ask<char>(*row.ex_a, 64).text, row.text);
    }
    if (row.ex_w != nullptr) {
      EXPECT_EQ(Ask<WCHAR>(*row.ex_w, 64).text, row.text);
    }
    for (const auto* fixed : {row.plain, row.w}) {
      if (fixed == nullptr) continue;
      GuardedBuffer<WCHAR> buffer(32);
      EXPECT_EQ((*fixed)(buffer.data()), S_OK);
      EXPECT_EQ(buffer.text(), row.text);
      EXPECT_EQ((*fixed)(nullptr), S_OK);
    }
    if (row.a == nullptr) continue;
    GuardedBuffer<char> buffer(64);
    EXPECT_EQ((*row.a)(buffer.data()), S_OK);
    EXPECT_EQ(buffer.text(), row.text);
  }
  GuardedBuffer<WCHAR> name(32);
  GuardedBuffer<char> version(64);
  EXPECT_EQ(e.PALSysinfo_GetOperatingSystemW(name.data(), nullptr), S_OK);
  EXPECT_EQ(e.PALSysinfo_GetOperatingSystemA(nullptr, version.data()), S_OK);
  EXPECT_EQ(name.text() + ' ' + version.text(), "pocketPC 5.2.19202");
}

// The fixed forms take their buffers to hold 64 bytes: 63 characters, or 31.
TEST_F(Identity, FixedFormsRefuseWhatTheirBufferDoesNotHold) {
  const sim::Exports& e = process.exports();
  struct Case {
    std::size_t characters;
    HRESULT a, w;
  };
  for (const Case& test : {Case{31, S_OK, S_OK}, Case{32, S_OK, PAL_SYSINFO_E_TOO_SHORT},
                           Case{63, S_OK, PAL_SYSINFO_E_TOO_SHORT},
                           Case{64, PAL_SYSINFO_E_TOO_SHORT, PAL_SYSINFO_E_TOO_SHORT}}) {
    SCOPED_TRACE(test.characters);
    const std::string model(test.characters, 'm');
    hardware.parameters[0x00D5] = TextAnswer(model);
    GuardedBuffer<char> a(64);
    GuardedBuffer<WCHAR> w(32);
    EXPECT_EQ(e.PALSysinfo_GetModelA(a.data()), test.a);
    EXPECT_EQ(a.text(), test.a == S_OK ? model : "untouched");
    EXPECT_EQ(e.PALSysinfo_GetModel(w.data()), test.w);
    EXPECT_EQ(w.text(), test.w == S_OK ? model : "untouched");
  }
}

// A failed read of these leaves the length at the 256 bytes that the source was given.
TEST_F(Identity, AnAddressOrDateThatCannotBeReadNeeds256Bytes) {
  hardware.parameters.erase(0x0001);
  hardware.parameters[0x0003] = BytesAnswer({});
  const sim::Exports& e = process.exports();
  GuardedBuffer<char> a(64);
  GuardedBuffer<WCHAR> w(32);
  EXPECT_EQ(e.PALSysinfo_GetEtherMACAddressA(a.data()), PAL_SYSINFO_E_TOO_SHORT);
  EXPECT_EQ(e.PALSysinfo_GetEtherMACAddress(w.data()), PAL_SYSINFO_E_TOO_SHORT);
  EXPECT_EQ(a.text() + w.text(), "untoucheduntouched");
  for (const DWORD detail : {10u, 7u, 8u}) {
    SCOPED_TRACE(detail);
    EXPECT_EQ(DetailA(detail, 255), (Answer{PAL_SYSINFO_E_TOO_SHORT, "untouched", 256}));
    EXPECT_EQ(DetailA(detail, 256), (Answer{S_OK, "", 256}));
    EXPECT_EQ(DetailW(detail, 511), (Answer{PAL_SYSINFO_E_TOO_SHORT, "untouched", 512}));
    EXPECT_EQ(DetailW(detail, 512), (Answer{S_OK, "", 2}));
  }
  hardware.parameters[0x0048] = TextAnswer("012345678901");
  EXPECT_EQ(DetailA(9), (Answer{S_OK, "CG21", 5})) << "12 characters: the address is asked for";
}

// What a parameter says of its own length is not believed further than its buffer goes.
TEST_F(Identity, ParametersThatLieGiveACleanResult) {
  struct Case {
    std::string_view what;
    DWORD detail;
    QueryAnswer answer;
    Answer expected;
  };
  const std::map<DWORD, std::uint16_t> parameter_of = {{0, 0x000A}, {1, 0x0048}, {2, 0x00D5},
                                                       {3, 0x00D6}, {7, 0x0003}, {10, 0x0001}};
  const auto open_end = [](const std::string& text) {
    return TextAnswer(text, sim::Terminator::kMissing);
  };
  const auto x = [](std::size_t count) { return std::string(count, 'x'); };
  const Answer fails = {E_FAIL, "untouched", 256};
  device.registry().SetString(kIdentityKey, "SerialNumber", "registry");
  for (const auto& [what, detail, answer, expected] : std::vector<Case>{
           {"no terminator", 2, open_end("RM23"), {S_OK, "RM23", 5}},
           {"fills the buffer", 2, TextAnswer(x(400)), {S_OK, x(128), 129}},
           {"claims more than it wrote", 2, Lying(open_end("RM23"), 9999), {S_OK, "RM23", 5}},
           {"claims less", 2, Lying(TextAnswer("RM23"), 2), {S_OK, "RM", 3}},
           {"no bytes", 2, BytesAnswer({}), fails},
           {"claims all", 2, Lying(BytesAnswer({}), 4), {S_OK, "", 1}},
           {"an error", 2, {{}, 31, {}}, fails},
           {"empty text", 2, TextAnswer(""), {S_OK, "", 1}},
           {"claims more than it wrote", 3, Lying(open_end("Im"), 9999), {S_OK, "Im", 3}},
           {"no bytes", 3, BytesAnswer({}), fails},
           {"three bytes of six", 10, BytesAnswer({0xAB, 0x0C, 0x10}), {S_OK, "abc10000", 9}},
           {"two bytes of four", 7, BytesAnswer({0x20, 0x14}), {S_OK, "00/00/2014", 11}},
           {"no digits", 7, BytesAnswer({0xFF, 0x00, 0x9F, 0xA0}), {S_OK, "105/100/16500", 14}},
           {"32 characters", 0, TextAnswer(x(32)), {S_OK, x(31), 32}},
           {"the count is not looked at", 0, Lying(TextAnswer("CG9"), 0), {S_OK, "CG9", 4}},
           {"no terminator", 0, open_end("CG9"), {S_OK, "CG9", 4}},
           {"255 bytes", 1, open_end(x(255)), {S_OK, x(255), 256}},
           {"256 bytes", 1, TextAnswer(x(256)), {S_OK, "registry", 9}},
       }) {
    SCOPED_TRACE(testing::Message() << what << ", detail " << detail);
    QueryAnswer& parameter = hardware.parameters[parameter_of.at(detail)];
    const QueryAnswer before = std::exchange(parameter, answer);
    EXPECT_EQ(Fresh(detail), expected);
    parameter = before;
  }
}

TEST_F(Identity, FirmwareEndsWithItsInformation) {
  QueryAnswer& information = hardware.system.firmware_information;
  information = sim::FirmwareInformation(std::string(65, 'v'));
  EXPECT_EQ(DetailA(4), (Answer{S_OK, std::string(65, 'v'), 67}));
  information.bytes.resize(40);
  EXPECT_EQ(DetailA(4), (Answer{S_OK, "", 2}));
  information = sim::NoAnswer();
  device.journal().Clear();
  EXPECT_EQ(DetailA(4), (Answer{E_FAIL, "untouched", 256}));
  EXPECT_EQ(TraceLines("ERROR"),
            std::vector<std::string>{
                "ERROR PalGetFirmwareVer. KernelIoContrl failed. win32err:0x32\\r\\n"});
}

TEST_F(Identity, TellsTheOperatingSystemOfWindowsCeAlone) {
  EXPECT_EQ(DetailA(5).text, "pocketPC");
  for (const char16_t* type : {u"PocketPC2", u"PocketCE", u"SmartPhone", u""}) {
    hardware.system.platform_type = sim::WideTextAnswer(type);
    EXPECT_EQ(DetailA(5), (Answer{S_OK, "WINCE", 6}));
  }
  hardware.system.platform_type =
      sim::WideTextAnswer(std::u16string(260, u'P'), sim::Terminator::kMissing);
  EXPECT_EQ(DetailA(5).text, "WINCE");
  hardware.system.platform_type = sim::WideTextAnswer(u"pocketPC", sim::Terminator::kMissing);
  EXPECT_EQ(DetailA(5).text, "pocketPC") << "behind an answer stand zeros";
  hardware.system.os_version.platform = 2;
  for (const DWORD detail : {5u, 6u}) {
    EXPECT_EQ(DetailA(detail), (Answer{kSourceFailed, "untouched", 256}));
  }
  GuardedBuffer<WCHAR> name(32);
  EXPECT_EQ(process.exports().PALSysinfo_GetOperatingSystem(name.data()), kSourceFailed);
  EXPECT_EQ(name.text(), "untouched");
  hardware.system.os_version = {.error = 31};
  EXPECT_EQ(DetailA(6).result, kSourceFailed);
}

// Where a serial number may stand.
struct SerialSources {
  std::u16string oem = u"Dravonel RM";
  std::optional<QueryAnswer> text{};   // parameter 0x0048
  std::optional<QueryAnswer> bytes{};  // parameter 0x0002
  sim::OsVersion os{};
  QueryAnswer device_id = sim::NoAnswer();
  std::string registry{};
  std::vector<sim::NetworkAdapter> adapters{};
};

Answer Given(const std::string& text) {
  return {S_OK, text, static_cast<DWORD>(text.size() + 1)};
}

const QueryAnswer kRaw = BytesAnswer({1, 2, 3, 4, 5, 0});
const QueryAnswer kZeros = BytesAnswer({0, 0, 0, 0, 0, 0});

// A device id whose platform id stands where these say.
QueryAnswer DeviceIdAt(std::uint8_t offset_low, std::uint8_t offset_high, std::uint8_t length) {
  QueryAnswer answer = BytesAnswer(std::vector<std::uint8_t>(512, 'd'));
  std::fill_n(answer.bytes.begin(), 20, std::uint8_t{0});
  answer.bytes[12] = offset_low;
  answer.bytes[13] = offset_high;
  answer.bytes[16] = length;
  return answer;
}

const std::vector<sim::NetworkAdapter> kAdapters = {
    {"WLAN1", {9, 9, 9, 9, 9, 9}, 71},
    {"RNDISFN1", {8, 8, 8, 8, 8, 8}},
    {"RNDISFN10", {0x00, 0x0A, 0x1B, 0x2C, 0x3D, 0xE4, 0x55, 0x66}},
    {"ISA1", {7, 7, 7, 7, 7, 7}},
};
const std::u16string kGreywing = u"greyWING 7";

TEST_F(Identity, SerialNumberComesFromTheFirstSourceThatHasIt) {
  struct Case {
    std::string_view what;
    SerialSources sources;
    Answer expected;
  };
  const std::vector<Case> cases = {
      {"text before bytes", {.text = TextAnswer("A"), .bytes = kRaw, .registry = "R"}, Given("A")},
      {"empty text: bytes are not asked for",
       {.text = TextAnswer(""), .bytes = kRaw, .registry = "R"},
       Given("R")},
      {"CE 5.0 drops all zeros", {.bytes = kRaw, .os = {.minor = 0}}, Given("504030201")},
      {"CE 5.1 drops all zeros", {.bytes = kRaw, .os = {.minor = 1}}, Given("504030201")},
      {"CE 5.2 drops one", {.bytes = kRaw}, Given("00504030201")},
      {"CE 4.2 drops one too", {.bytes = kRaw, .os = {.major = 4}}, Given("00504030201")},
      {"CE 6.0 drops one", {.bytes = kRaw, .os = {.major = 6, .minor = 0}}, Given("00504030201")},
      {"a version that cannot be read counts as old",
       {.bytes = kRaw, .os = {.error = 31}},
       Given("504030201")},
      {"nothing to drop", {.bytes = BytesAnswer({1, 2, 3, 4, 5, 0xAB})}, Given("AB0504030201")},
      {"short bytes are filled with zeros", {.bytes = BytesAnswer({0x12})}, Given("00000000012")},
      {"zeros alone on CE 5.0 are none",
       {.bytes = kZeros, .os = {.minor = 0}, .registry = "R"},
       Given("R")},
      {"256 bytes are refused",
       {.bytes = BytesAnswer(std::vector<std::uint8_t>(256, 1)), .registry = "R"},
       Given("R")},
      {"Rx has text, its zeros stay",
       {.oem = u"Dravonel Rx", .bytes = TextAnswer("0RX"), .os = {.minor = 0}},
       Given("0RX")},
      {"RQ2 too, unterminated",
       {.oem = u"Dravonel RQ2", .bytes = TextAnswer("00RQ", sim::Terminator::kMissing)},
       Given("00RQ")},
      {"the names are compared exactly",
       {.oem = u"Dravonel RX", .bytes = kRaw},
       Given("00504030201")},
      {"device id of a Greywing",
       {.oem = kGreywing, .device_id = sim::DeviceIdRecord("GW7"), .registry = "R"},
       Given("GW7")},
      {"also after an empty text",
       {.oem = kGreywing, .text = TextAnswer(""), .device_id = sim::DeviceIdRecord("GW7")},
       Given("GW7")},
      {"a parameter goes first",
       {.oem = kGreywing, .bytes = kRaw, .device_id = sim::DeviceIdRecord("GW7")},
       Given("00504030201")},
      {"of a Greywing alone",
       {.oem = u"Greywin", .device_id = sim::DeviceIdRecord("GW7"), .registry = "R"},
       Given("R")},
      {"id of eight bytes is empty",
       {.oem = kGreywing, .device_id = sim::DeviceIdRecord(""), .registry = "R"},
       Given("R")},
      {"id below eight bytes",
       {.oem = kGreywing, .device_id = DeviceIdAt(20, 0, 7), .registry = "R"},
       Given("R")},
      {"id at the end of the record",
       {.oem = kGreywing, .device_id = DeviceIdAt(0xF6, 1, 10)},
       Given("dd")},
      {"id that leaves the record",
       {.oem = kGreywing, .device_id = DeviceIdAt(0xF6, 1, 11), .registry = "R"},
       Given("R")},
      {"id behind the record",
       {.oem = kGreywing, .device_id = DeviceIdAt(1, 2, 8), .registry = "R"},
       Given("R")},
      {"id without offset",
       {.oem = kGreywing, .device_id = DeviceIdAt(0, 0, 20), .registry = "R"},
       Given("R")},
      {"id too long for a caller",
       {.oem = kGreywing, .device_id = sim::DeviceIdRecord(std::string(256, 'g'))},
       {kSourceTooLong, "untouched", 256}},
      {"registry before adapters", {.registry = "R", .adapters = kAdapters}, Given("R")},
      {"registry value of 128 bytes",
       {.registry = std::string(63, 'r')},
       Given(std::string(63, 'r'))},
      {"longer registry value", {.registry = std::string(64, 'r')}, Given("000000000000")},
      {"first wired adapter that is not the USB one",
       {.adapters = kAdapters},
       Given("000a1b2c3de4")},
      {"wireless and USB alone", {.adapters = {kAdapters[0], kAdapters[1]}}, Given("000000000000")},
      {"nothing at all", {}, Given("000000000000")},
      {"no OEM information",
       {.oem = u"", .text = TextAnswer("A")},
       {kSourceFailed, "untouched", 256}},
  };
  for (const auto& [what, sources, expected] : cases) {
    SCOPED_TRACE(what);
    hardware.parameters[0x0048] = sources.text.value_or(sim::NoAnswer());
    hardware.parameters[0x0002] = sources.bytes.value_or(sim::NoAnswer());
    hardware.system.oem_information = sim::WideTextAnswer(sources.oem);
    hardware.system.os_version = sources.os;
    hardware.system.device_id = sources.device_id;
    device.registry().RemoveTree(kIdentityKey);
    if (!sources.registry.empty()) {
      device.registry().SetString(kIdentityKey, "SerialNumber", sources.registry);
    }
    hardware.adapters = sources.adapters;
    EXPECT_EQ(Fresh(1), expected);
  }
}

TEST_F(Identity, AdaptersThatCannotBeListedGiveZeros) {
  hardware.parameters.erase(0x0048);
  hardware.adapters = kAdapters;
  for (const sim::Fault& fault : {sim::Fault{.call = "GetAdaptersInfo", .nth = 1, .error = 232},
                                  sim::Fault{.call = "GetAdaptersInfo", .nth = 2, .error = 111},
                                  sim::Fault{.call = "malloc", .nth = 1, .error = 8}}) {
    device.PlanFault(fault);
    EXPECT_EQ(Fresh(1), Given("000000000000"));
    device.ClearFaults();
  }
  EXPECT_EQ(Fresh(1), Given("000a1b2c3de4")) << "and no process took it over from another";
}

TEST_F(Identity, HardwareConfigurationComesFromTheFirstSourceThatHasIt) {
  struct Case {
    std::string_view what;
    std::u16string oem;
    std::optional<QueryAnswer> parameter;
    std::optional<std::vector<std::uint8_t>> registry;
    Answer expected;
  };
  device.registry().SetString(kIdentityKey, "Other", "not asked for");
  const auto key = device.registry().Find(kIdentityKey);
  const std::vector<std::uint8_t> in_registry = {'G', 0, 'X', 0, 0, 0};
  for (const Case& test : {
           Case{"parameter", u"Other", TextAnswer("CG1"), in_registry, Given("CG1")},
           Case{"Rx has its own", u"Dravonel Rx", TextAnswer("CG1"), in_registry, Given("CR7")},
           Case{"compared exactly", u"Dravonel Rx2", TextAnswer("CG1"), {}, Given("CG1")},
           Case{"not readable", u"Other", {}, in_registry, Given("GX")},
           Case{"empty", u"Other", TextAnswer(""), in_registry, Given("GX")},
           Case{"registry without terminator", u"Other", {}, {{'G', 0}}, Given("G")},
           Case{"empty registry value", u"Other", {}, {{0, 0}}, Given("CG0")},
           Case{"registry value of no bytes", u"Other", {}, {{}}, Given("CG0")},
           Case{"nothing", u"Other", {}, {}, Given("CG0")},
           Case{
               "no OEM information", u"", TextAnswer("CG1"), {}, {kSourceFailed, "untouched", 256}},
       }) {
    SCOPED_TRACE(test.what);
    hardware.system.oem_information = sim::WideTextAnswer(test.oem);
    hardware.parameters[0x000A] = test.parameter.value_or(sim::NoAnswer());
    hardware.parameters[0x0027] = TextAnswer("CR7");
    key->DeleteValue(u"HardwareCfgString");
    if (test.registry) key->SetValue(u"HardwareCfgString", REG_SZ, *test.registry);
    EXPECT_EQ(Fresh(0), test.expected);
  }
  hardware.system.oem_information = sim::WideTextAnswer(u"Other");
  hardware.parameters.erase(0x000A);
  device.registry().SetDword(kIdentityKey, "HardwareCfgString", 0x00410041);
  EXPECT_EQ(Fresh(0), Given("CG0")) << "a number is no configuration";
}

// What a process has found stays, even if it was a stop-gap; the next process asks anew.
TEST_F(Identity, KeepsWhatAProcessFoundFirst) {
  const Answer serial = Given("21190700042");
  EXPECT_EQ(DetailA(1), serial);
  EXPECT_EQ(DetailA(0), Given("CG21A4"));
  hardware.parameters[0x0048] = TextAnswer("other");
  hardware.parameters[0x000A] = TextAnswer("other");
  const unsigned reads = device.calls("KernelIoControl");
  EXPECT_EQ(DetailA(1), serial);
  EXPECT_EQ(DetailA(0), Given("CG21A4"));
  EXPECT_EQ(device.calls("KernelIoControl"), reads);
  EXPECT_EQ(Fresh(1), Given("other"));
  EXPECT_EQ(Fresh(0), Given("other"));
  hardware.parameters[0x00D5] = TextAnswer("RM99");
  EXPECT_EQ(DetailA(2), Given("RM99")) << "only those two are kept";
  hardware.system.oem_information = sim::NoAnswer();
  EXPECT_EQ(DetailA(1).result, kSourceFailed) << "OEM information is asked for each time";
}

TEST_F(Identity, QualifiesTheSerialNumberByTheConfiguration) {
  struct Case {
    std::string configuration, serial, expected;
  };
  for (const Case& test : {Case{"CG21A4", "12345678901", "CG2112345678901"},
                           Case{"CG21A4", "123456789012", "CG210a1b2c3d4"}, Case{"C", "1", "C1"}}) {
    hardware.parameters[0x000A] = TextAnswer(test.configuration);
    hardware.parameters[0x0048] = TextAnswer(test.serial);
    EXPECT_EQ(Fresh(9), Given(test.expected));
  }
  hardware.system.oem_information = sim::NoAnswer();
  EXPECT_EQ(DetailA(9), (Answer{kSourceFailed, "untouched", 256}));
}

TEST_F(Identity, KnowsTheMakersOwn) {
  struct Case {
    std::u16string oem;
    QueryAnswer flags;
    HRESULT result;
    std::vector<std::string> says;
  };
  const std::string line = "PALSysinfo_IsDravonelDevice - Is ORQ software flag enabled =";
  for (const Case& test : {
           Case{u"by Dravonel, Inc.", sim::NoAnswer(), S_OK, {}},
           Case{u"DRAVONEL", BytesAnswer({0, 0, 0, 4}), S_OK, {line + "Yes.\\r\\n"}},
           Case{u"Greywing", BytesAnswer({0, 0, 0, 0}), E_FAIL, {line + "No.\\r\\n"}},
           Case{u"Greywing", BytesAnswer({}), E_FAIL, {line + "No.\\r\\n"}},
           Case{u"", sim::NoAnswer(), E_FAIL, {line + "No.\\r\\n"}},
       }) {
    hardware.system.oem_information = sim::WideTextAnswer(test.oem);
    hardware.parameters[0x001B] = test.flags;
    device.journal().Clear();
    EXPECT_EQ(process.exports().PALSysinfo_IsDravonelDevice(), test.result);
    EXPECT_EQ(TraceLines(line), test.says);
  }
}

// The lines of one query, with the process's number left out.
std::vector<std::string> WithoutNumbers(std::vector<std::string> lines) {
  for (std::string& line : lines) {
    const std::size_t process = line.find("procid:0x");
    if (process != std::string::npos) line.erase(process + 9);
  }
  return lines;
}

const std::string kEnterA = "0x440F0000 PalProcessResultExA(fcn,...). procid:0x";
const std::string kLeaveA = "0x440F0000 PalProcessResultExA - Exit. procid:0x";
const std::string kEnterW = "0x440F0000 PalSysIoRequestExW(fcn,...) - Entry. procid:0x";
const std::string kLeaveW = "0x440F0000 PalSysIoRequestExW - Exit. procid:0x";
const std::string kSource = "0x440F0000 PalSysIoRequestExA - 0x0=pfnSYS_CALL(out:RM11,out:5)";
const std::string kNoModel =
    "0xC40F0000 ERROR PalGetModel. IOCTL request failed.  win32err: 0x57\\r\\n";

TEST_F(Identity, ConvertersTellWhatWasAskedAndAnswered) {
  struct Query {
    bool has_buffer, has_length;
    DWORD bytes;
  };
  const auto lines_of = [this]<class Unit>(const auto& get, const Query& query, Unit) {
    device.journal().Clear();
    GuardedBuffer<Unit> buffer(query.bytes / sizeof(Unit));
    DWORD length = query.bytes;
    get(query.has_buffer ? buffer.data() : nullptr, query.has_length ? &length : nullptr);
    return WithoutNumbers(CategorisedLines());
  };
  // The lines with the addresses that the journal shows for those of the caller.
  const auto with_addresses = [](std::vector<std::string> lines, const Query& query) {
    const std::string addresses = fmt::format("(fcn,{},{})", query.has_buffer ? "0x1000" : "0x0",
                                              query.has_length ? "0x2000" : "0x0");
    for (std::string& line : lines) {
      const std::size_t at = line.find("(fcn,...)");
      if (at != std::string::npos) line.replace(at, 9, addresses);
    }
    return lines;
  };
  struct Case {
    Query query;
    std::vector<std::string> a, w;
  };
  const sim::Exports& exports = process.exports();
  const Query fits{true, true, 64};
  for (const auto& [query, a, w] : std::vector<Case>{
           {fits,
            {kEnterA, kSource, "0x440F0000 PalProcessResultExA - RM11,len:5, procid:0x", kLeaveA},
            {kEnterW, kSource, "0x440F0000 PalSysIoRequestExW - RM11,len:10, procid:0x", kLeaveW}},
           {{true, true, 4},
            {kEnterA, kSource,
             "0xC40F0000 PalProcessResultExA. In buff too short. inlen:4, procid:0x",
             "0x440F0000 PalProcessResultExA - RM11,len:5, procid:0x", kLeaveA},
            {kEnterW, kSource,
             "0xC40F0000 PalSysIoRequestExW. In buff too short. Required len:10, procid:0x",
             kLeaveW}},
           {{false, true, 64},
            {kEnterA, kSource},
            {kEnterW, kSource, "0x440F0000 PalSysIoRequestExW(NULL,out:10) procid:0x"}},
           {{true, false, 64},
            {kEnterA, kSource, "0xC40F0000 PalProcessResultExA. Invalid input;procid:0x", kLeaveA},
            {kEnterW, kSource, "0xC40F0000 PalSysIoRequestExW. Invalid input;procid:0x", kLeaveW}},
           {{false, false, 64},
            {kEnterA, "0xC40F0000 PalProcessResultExA(fcn,...). Invalid input;procid:0x", kLeaveA},
            {kEnterW, "0xC40F0000 PalSysIoRequestExW(fcn,...) Input invalid. procid:0x", kLeaveW}},
       }) {
    EXPECT_EQ(lines_of(exports.PALSysinfo_GetModelExA, query, char{}), with_addresses(a, query));
    EXPECT_EQ(lines_of(exports.PALSysinfo_GetModelExW, query, WCHAR{}), with_addresses(w, query));
  }
  hardware.parameters.erase(0x00D5);
  EXPECT_EQ(lines_of(exports.PALSysinfo_GetModelExA, fits, char{}),
            with_addresses({kEnterA, kNoModel}, fits));
  EXPECT_EQ(lines_of(exports.PALSysinfo_GetModelExW, fits, WCHAR{}),
            with_addresses({kEnterW, kNoModel}, fits));
}

}  // namespace
