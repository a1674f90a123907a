// The parser of the binary configuration store "\ConfigStore\dcecfg".
//
// The file is a sequence of sections; other bytes between them are skipped. A direct section (BB ..
// FF) holds entries with a literal or an indexed key, a DSCP section (CC .. FF) the blocks of ports
// and devices. A faulty entry is traced and left out, and parsing goes on behind it.
#ifndef CONFIGSTORE_DCECFG_PARSER_H_
#define CONFIGSTORE_DCECFG_PARSER_H_

#include <span>

#include "configstore/dcecfg_reader.h"
#include "configstore/dcecfg_record.h"
#include "platform/wince.h"

namespace pal {

// Large: it is allocated on the heap for one update.
class CDCECFGParser {
 public:
  static constexpr DWORD kMaxRecords = DcecfgRecords::kMaxRecords;
  static constexpr DWORD kBufferSize = DcecfgReader::kBufferSize;

  // Reads the file. E_FAIL where it is missing, cannot be read, or fills the buffer.
  [[nodiscard]] HRESULT Load();
  // Takes the data from memory instead; E_FAIL where it would fill the buffer.
  [[nodiscard]] HRESULT Load(std::span<const BYTE> data);

  // Turns the loaded data into records. E_FAIL where a DSCP section ends early.
  [[nodiscard]] HRESULT ParseFile();

  [[nodiscard]] DWORD record_count() const { return static_cast<DWORD>(records().size()); }
  [[nodiscard]] std::span<const DcecfgKeyRecord> records() const { return records_.all(); }

  // Where parsing stands: the offset of the next byte, or the data's length once it has run off.
  [[nodiscard]] DWORD offset() const { return reader_.offset(); }
  // The offset of the last item that was read, which an error is about; the data's length at the
  // end.
  [[nodiscard]] DWORD item_offset() const { return reader_.item_offset(); }

 private:
  DcecfgReader reader_;
  DcecfgRecords records_;
};

}  // namespace pal

#endif  // CONFIGSTORE_DCECFG_PARSER_H_
