// The parsers of the two kinds of sections, and what both need.
#ifndef CONFIGSTORE_DCECFG_SECTIONS_H_
#define CONFIGSTORE_DCECFG_SECTIONS_H_

#include "configstore/dcecfg_reader.h"
#include "configstore/dcecfg_record.h"
#include "frame/trace.h"

namespace pal::dcecfg {

inline constexpr TraceSource kTrace{Facility::kConfigStore};

// Both read a section from its first byte to behind its last one, and add a record for each entry.
// A faulty entry is traced and left out.
void ParseDirectSection(DcecfgReader& reader, DcecfgRecords& records);
// E_FAIL where the data end inside the section.
[[nodiscard]] HRESULT ParseDscpSection(DcecfgReader& reader, DcecfgRecords& records);

// What became of an entry's key. An entry whose key does not fit its record is left out, and the
// value behind the key is skipped.
enum class Key { kNone, kMisfit, kFilled };

// What became of a value's text.
enum class Text { kRead, kTooLong, kNoEnd };

// Reads a text into `record.value_text`.
[[nodiscard]] Text ReadValueText(DcecfgReader& reader, DcecfgKeyRecord& record);

// Reads a text of hexadecimal digits and decodes each two of them to a byte of `record.binary`, as
// strtoul reads them. A last digit that stands alone is a byte of its own.
[[nodiscard]] Text ReadHexadecimal(DcecfgReader& reader, DcecfgKeyRecord& record);

inline void TraceTooLong() {
  kTrace.Error("Key, value name or value too long. Entry skipped.");
}

}  // namespace pal::dcecfg

#endif  // CONFIGSTORE_DCECFG_SECTIONS_H_
