// The registry values that a configuration store describes.
#ifndef CONFIGSTORE_DCECFG_RECORD_H_
#define CONFIGSTORE_DCECFG_RECORD_H_

#include <array>
#include <span>

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

// The values of one file, in file order. About 180 KB.
class DcecfgRecords {
 public:
  static constexpr DWORD kMaxRecords = 256;

  void Clear() { count_ = 0; }
  // A full table stays as it is; this is traced.
  void Add(const DcecfgKeyRecord& record);
  [[nodiscard]] std::span<const DcecfgKeyRecord> all() const {
    return std::span(records_).first(count_);
  }

 private:
  std::array<DcecfgKeyRecord, kMaxRecords> records_;  // filled up to count_
  DWORD count_ = 0;
};

}  // namespace pal

#endif  // CONFIGSTORE_DCECFG_RECORD_H_
