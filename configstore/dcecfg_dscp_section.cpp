#include <array>
#include <span>
#include <string_view>
#include <utility>

#include "configstore/dcecfg_format.h"
#include "configstore/dcecfg_sections.h"
#include "frame/text.h"
#include "sysinfo/internal.h"

namespace pal::dcecfg {
namespace {

// Port 0 has the empty name. Its path therefore holds two backslashes in a row, which the registry
// takes for one.
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

// The entries of one key index.
struct Block {
  char path[sizeof(DcecfgKeyRecord::key_path)] = {};
  bool one_byte_seen = false;
  bool two_byte_seen = false;
};

// Writes <base>\<subsection>\<index name>\ to `path`; the frame's key follows it.
[[nodiscard]] bool SetBlockPath(std::span<char> path, const Subsection& subsection, size_t index) {
  char name[32];
  return Narrow(name, subsection.index_names[index]) && Copy(path, kBaseKey) &&
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

// A bad frame type or format takes three bytes: both of them and the one behind.
Key ReadKey(DcecfgReader& reader, Block& block, DcecfgKeyRecord& record) {
  const std::string_view frame_key = FrameKey(reader.ReadByte());
  const BYTE format = reader.ReadByte();
  if (frame_key.empty() || format > kNamed) {
    reader.Advance();
    kTrace.Error("Invalid frame or command type");
    return Key::kNone;
  }
  if (reader.ended()) return Key::kNone;

  std::string_view value_name;
  if (format == kNamed) {
    const auto name = reader.ReadString();
    if (!name || reader.ended()) return Key::kNone;
    value_name = *name;
  } else {
    value_name = format == kOneByte ? "OneByteAfterFidFmt" : "TwoByteAfterFidFmt";
  }
  if (!SetKey(record, block.path, frame_key, format, value_name)) {
    TraceTooLong();
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

// False where the entry has no value: its key is faulty, or the data ended inside it.
bool ParseEntry(DcecfgReader& reader, Block& block, DcecfgRecords& records) {
  DcecfgKeyRecord record = {};
  const Key key = ReadKey(reader, block, record);
  if (key == Key::kNone) return false;
  if (key == Key::kFilled) {
    kTrace.Info("DSCP Key %s : %s type %d found", record.key_path, record.value_name, record.type);
  }
  const Text read = ReadHexadecimal(reader, record);
  if (read == Text::kNoEnd) return false;
  if (read == Text::kTooLong || key == Key::kMisfit) return true;
  kTrace.Info("Value = %s", record.value_text);
  records.Add(record);
  return true;
}

// True where the block's end marker was found.
bool ParseBlock(DcecfgReader& reader, const Subsection& subsection, DcecfgRecords& records) {
  if (reader.ended()) return false;
  const BYTE index = reader.ReadByte();
  Block block;
  if (index >= subsection.index_names.size() || !SetBlockPath(block.path, subsection, index)) {
    kTrace.Error("Key Index out of bounds");
    return false;
  }
  while (!reader.ended()) {
    if (!ParseEntry(reader, block, records) && reader.ended()) {
      kTrace.Error("Abnormal keyentry end");
    }
    if (reader.At(kEndOfBlock)) {
      reader.Advance();
      return true;
    }
  }
  return false;
}

void ParseSubsection(DcecfgReader& reader, DcecfgRecords& records) {
  const BYTE index = reader.ReadByte();
  if (index >= kSubsections.size()) {
    kTrace.Error("Subsection index out of bounds");
    return;
  }
  bool block_closed = false;
  do {
    block_closed = ParseBlock(reader, kSubsections[index], records);
  } while (!reader.ended() && !reader.At(kEndOfSubsection));
  if (!reader.ended()) {
    reader.Advance();
  } else if (!block_closed) {
    kTrace.Error("Abnormal subsection end");
  }
}

}  // namespace

// The markers that end a block, a subsection and the section count only behind an item, never in
// place of one.
HRESULT ParseDscpSection(DcecfgReader& reader, DcecfgRecords& records) {
  reader.Advance();
  kTrace.Info(" Entry Parsing DSCP registry section...");
  HRESULT result = S_OK;
  do {
    if (reader.ended()) {
      kTrace.Error("Unexpected end of file");
      result = E_FAIL;
      break;
    }
    ParseSubsection(reader, records);
  } while (!reader.At(kEndOfSection));
  reader.Advance();
  kTrace.Info(" Exit Parsing DSCP registry section...");
  return result;
}

}  // namespace pal::dcecfg
