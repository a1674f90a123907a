// The parser of the binary configuration store "\ConfigStore\dcecfg".
//
// The file is a sequence of sections; other bytes between them are skipped. A direct section (BB ..
// FF) holds entries with a literal or an indexed key, a DSCP section (CC .. FF) the blocks of ports
// and devices. A faulty entry is traced and left out, and parsing goes on behind it.
#ifndef CONFIGSTORE_DCECFG_PARSER_H_
#define CONFIGSTORE_DCECFG_PARSER_H_

#include <array>
#include <span>

#include "configstore/dcecfg_reader.h"
#include "platform/wince.h"

namespace pal {

// What the value text of a record stands for.
enum class DcecfgValueType : DWORD { kBinary = 0, kString = 1, kDword = 2 };

// One registry value to be written.
struct DcecfgKeyRecord {
  char key_path[256];  // with the root's name
  char value_name[64];
  DcecfgValueType type;
  char value_text[256];  // as in the file; of binary data the hexadecimal text
  BYTE binary[128];
  DWORD binary_length;  // at most 64: longer data is cut
  LONG dword;
};

// About 180 KB: allocated on the heap for one update.
class CDCECFGParser {
 public:
  static constexpr DWORD kMaxRecords = 256;
  static constexpr DWORD kBufferSize = DcecfgReader::kBufferSize;

  // Reads the file. E_FAIL where it is missing, cannot be read, or fills the buffer.
  [[nodiscard]] HRESULT Load();
  // Takes the data from memory instead; E_FAIL where it would fill the buffer.
  [[nodiscard]] HRESULT Load(std::span<const BYTE> data);

  // Turns the loaded data into records. E_FAIL where a DSCP section ends early.
  [[nodiscard]] HRESULT ParseFile();

  [[nodiscard]] DWORD record_count() const { return record_count_; }
  [[nodiscard]] std::span<const DcecfgKeyRecord> records() const {
    return std::span(records_).first(record_count_);
  }

  // Where parsing stands: the offset of the next byte, or the data's length once it has run off.
  [[nodiscard]] DWORD offset() const { return reader_.offset(); }
  // Where what was read last begins, which is what an error is about; the data's length at the end.
  [[nodiscard]] DWORD item_offset() const { return reader_.item_offset(); }

 private:
  // kMisfit: the entry is left out and its value stepped over.
  enum class Key { kNone, kMisfit, kFilled };
  enum class Text { kRead, kTooLong, kNoEnd };

  // The entries of one key index in a DSCP section.
  struct DscpBlock {
    char path[sizeof(DcecfgKeyRecord::key_path)] = {};
    bool one_byte_seen = false;
    bool two_byte_seen = false;
  };

  void ParseDirectSection();
  void ParseDirectEntry();
  Key ReadLiteralKey(BYTE marker, DcecfgKeyRecord& record);
  static Key ReadIndexedKey(BYTE index, DcecfgKeyRecord& record);
  bool ReadDirectValue(DcecfgKeyRecord& record);

  HRESULT ParseDscpSection();
  void ParseDscpSubsection();
  bool ParseDscpBlock(size_t subsection);
  bool ParseDscpEntry(DscpBlock& block);
  Key ReadDscpKey(DscpBlock& block, DcecfgKeyRecord& record);

  Text ReadValueText(DcecfgKeyRecord& record);
  Text ReadHexadecimal(DcecfgKeyRecord& record);
  void AddRecord(const DcecfgKeyRecord& record);

  std::array<DcecfgKeyRecord, kMaxRecords> records_;  // filled up to record_count_
  DWORD record_count_ = 0;
  DcecfgReader reader_;
};

}  // namespace pal

#endif  // CONFIGSTORE_DCECFG_PARSER_H_
