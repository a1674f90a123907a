#include <array>
#include <span>
#include <string_view>
#include <utility>

#include "configstore/dcecfg_format.h"
#include "configstore/dcecfg_parser.h"
#include "frame/text.h"
#include "sysinfo/internal.h"

namespace pal {

using dcecfg::kTrace;

namespace {

// Port 0 has the empty name, so that its path holds two backslashes in a row; that is kept.
constexpr auto kPortNames = std::to_array<WideText>({
    TEXT(""),   TEXT("1"),  TEXT("2"),  TEXT("3"),  TEXT("4"),  TEXT("5"),  TEXT("6"),
    TEXT("7"),  TEXT("8"),  TEXT("9"),  TEXT("10"), TEXT("11"), TEXT("12"), TEXT("13"),
    TEXT("14"), TEXT("15"), TEXT("16"), TEXT("17"), TEXT("18"),
});
static_assert(kPortNames.size() == 19);

struct Subsection {
  std::string_view key;
  std::span<const WideText> index_names;
};

constexpr std::array<Subsection, 2> kSubsections = {{
    {"ADCPorts", kPortNames},
    {"ADCDevices", kDeviceNames},
}};

enum Format : BYTE { kOneByte = 0, kTwoByte = 1, kNamed = 2 };

// The key that a frame type stands for; empty for a type that does not exist.
std::string_view FrameKey(BYTE frame_type) {
  if (frame_type == 'A') return "DevConfig";
  if (frame_type == 'B') return "CntrlCmdConfig";
  return {};
}

// <base>\<subsection>\<index name>\, where the frame's key is still to follow.
[[nodiscard]] bool SetBlockPath(std::span<char> path, const Subsection& subsection, size_t index) {
  char name[32];
  return Narrow(name, subsection.index_names[index]) && Copy(path, dcecfg::kBaseKey) &&
         Append(path, subsection.key) && Append(path, "\\") && Append(path, name) &&
         Append(path, "\\");
}

[[nodiscard]] bool SetKey(DcecfgKeyRecord& record, std::string_view block_path,
                          std::string_view frame_key, BYTE format, std::string_view value_name) {
  record.type = DcecfgValueType::kBinary;
  return Copy(record.key_path, block_path) && Append(record.key_path, frame_key) &&
         (format != kNamed || Append(record.key_path, "\\StringAfterFidFmt")) &&
         Copy(record.value_name, value_name);
}

}  // namespace

// The markers that end a block, a subsection and the section are looked for behind an item only,
// never in place of one.
HRESULT CDCECFGParser::ParseDscpSection() {
  reader_.Advance();
  kTrace.Info(" Entry Parsing DSCP registry section...");
  do {
    if (reader_.ended()) {
      kTrace.Error("Unexpected end of file");
      kTrace.Info(" Exit Parsing DSCP registry section...");
      return E_FAIL;
    }
    ParseDscpSubsection();
  } while (!reader_.At(dcecfg::kEndOfSection));
  reader_.Advance();
  kTrace.Info(" Exit Parsing DSCP registry section...");
  return S_OK;
}

void CDCECFGParser::ParseDscpSubsection() {
  const BYTE subsection = reader_.ReadByte();
  if (subsection >= kSubsections.size()) {
    kTrace.Error("Subsection index out of bounds");
    return;
  }
  bool block_closed = false;
  do {
    block_closed = ParseDscpBlock(subsection);
  } while (!reader_.ended() && !reader_.At(dcecfg::kEndOfSubsection));
  if (!reader_.ended()) {
    reader_.Advance();
  } else if (!block_closed) {
    kTrace.Error("Abnormal subsection end");
  }
}

// Whether the block's end marker was found.
bool CDCECFGParser::ParseDscpBlock(size_t subsection) {
  if (reader_.ended()) return false;
  const BYTE index = reader_.ReadByte();
  DscpBlock block;
  if (index >= kSubsections[subsection].index_names.size() ||
      !SetBlockPath(block.path, kSubsections[subsection], index)) {
    kTrace.Error("Key Index out of bounds");
    return false;
  }
  while (!reader_.ended()) {
    if (!ParseDscpEntry(block) && reader_.ended()) kTrace.Error("Abnormal keyentry end");
    if (reader_.At(dcecfg::kEndOfBlock)) {
      reader_.Advance();
      return true;
    }
  }
  return false;
}

// False where the entry has no value: its key is faulty, or the data ended inside it.
bool CDCECFGParser::ParseDscpEntry(DscpBlock& block) {
  DcecfgKeyRecord record = {};
  const Key key = ReadDscpKey(block, record);
  if (key == Key::kNone) return false;
  if (key == Key::kFilled) {
    kTrace.Info("DSCP Key %s : %s type %d found", record.key_path, record.value_name, record.type);
  }
  const Text read = ReadHexadecimal(record);
  if (read == Text::kNoEnd) return false;
  if (read == Text::kTooLong || key == Key::kMisfit) return true;
  kTrace.Info("Value = %s", record.value_text);
  AddRecord(record);
  return true;
}

// Three bytes are gone after a bad frame type or format: both and the one behind them.
CDCECFGParser::Key CDCECFGParser::ReadDscpKey(DscpBlock& block, DcecfgKeyRecord& record) {
  const std::string_view frame_key = FrameKey(reader_.ReadByte());
  const BYTE format = reader_.ReadByte();
  if (frame_key.empty() || format > kNamed) {
    reader_.Advance();
    kTrace.Error("Invalid frame or command type");
    return Key::kNone;
  }
  if (reader_.ended()) return Key::kNone;

  std::string_view value_name;
  if (format == kNamed) {
    const auto name = reader_.ReadString();
    if (!name || reader_.ended()) return Key::kNone;
    value_name = *name;
  } else {
    value_name = format == kOneByte ? "OneByteAfterFidFmt" : "TwoByteAfterFidFmt";
  }
  if (!SetKey(record, block.path, frame_key, format, value_name)) {
    dcecfg::TraceTooLong();
    return Key::kMisfit;
  }
  // Both records are kept: the later one wins in the registry.
  if (format == kOneByte && std::exchange(block.one_byte_seen, true)) {
    kTrace.Warning("Overwriting One Byte write for %s", record.key_path);
  }
  if (format == kTwoByte && std::exchange(block.two_byte_seen, true)) {
    kTrace.Warning("Overwriting Two Byte write for %s", record.key_path);
  }
  return Key::kFilled;
}

}  // namespace pal
