#include "configstore/dcecfg_parser.h"

#include <charconv>

#include "configstore/dcecfg_format.h"
#include "frame/text.h"

namespace pal {

using dcecfg::kTrace;

HRESULT CDCECFGParser::Load(std::span<const BYTE> data) {
  record_count_ = 0;
  if (!reader_.Load(data)) {
    kTrace.Error("CDCECFGParser: Config Store DCECFG too large");
    return E_FAIL;
  }
  kTrace.Info("CDCECFGParser: Config Store DCECFG present");
  return S_OK;
}

HRESULT CDCECFGParser::ParseFile() {
  reader_.Rewind();
  record_count_ = 0;
  HRESULT result = S_OK;
  while (reader_.HasByte()) {
    if (reader_.At(dcecfg::kDirectSection)) {
      ParseDirectSection();
      result = S_OK;
    } else if (reader_.At(dcecfg::kDscpSection)) {
      result = ParseDscpSection();
    } else {
      reader_.Advance();
    }
  }
  kTrace.Info("CDCECFGParser::ParseFile. Config store file parsing complete");
  return result;
}

CDCECFGParser::Text CDCECFGParser::ReadValueText(DcecfgKeyRecord& record) {
  const auto text = reader_.ReadString();
  if (!text) return Text::kNoEnd;
  if (!Copy(record.value_text, *text)) {
    dcecfg::TraceTooLong();
    return Text::kTooLong;
  }
  return Text::kRead;
}

// The data of two digits a byte. A last digit that stands alone is a byte of its own; what is no
// hexadecimal number counts as far as it is one.
CDCECFGParser::Text CDCECFGParser::ReadHexadecimal(DcecfgKeyRecord& record) {
  constexpr DWORD kMaxBytes = 64;
  const Text read = ReadValueText(record);
  if (read != Text::kRead) return read;
  const char* digits = record.value_text;
  while (*digits != '\0' && record.binary_length < kMaxBytes) {
    const char* const pair_end = digits + (digits[1] != '\0' ? 2 : 1);
    BYTE byte = 0;
    std::from_chars(digits, pair_end, byte, 16);
    record.binary[record.binary_length++] = byte;
    digits = pair_end;
  }
  return Text::kRead;
}

void CDCECFGParser::AddRecord(const DcecfgKeyRecord& record) {
  if (record_count_ == records_.size()) {
    kTrace.Error("No room for more than %d keys. Entry skipped.", kMaxRecords);
    return;
  }
  records_[record_count_++] = record;
}

}  // namespace pal
