#include "configstore/dcecfg_sections.h"

#include <cstdlib>

#include "frame/text.h"

namespace pal {

void DcecfgRecords::Add(const DcecfgKeyRecord& record) {
  if (count_ == kMaxRecords) {
    dcecfg::kTrace.Error("No room for more than %d keys. Entry skipped.", kMaxRecords);
    return;
  }
  records_[count_++] = record;
}

namespace dcecfg {

Text ReadValueText(DcecfgReader& reader, DcecfgKeyRecord& record) {
  const auto text = reader.ReadString();
  if (!text) return Text::kNoEnd;
  if (Copy(record.value_text, *text)) return Text::kRead;
  TraceTooLong();
  return Text::kTooLong;
}

Text ReadHexadecimal(DcecfgReader& reader, DcecfgKeyRecord& record) {
  constexpr DWORD kMaxBytes = 64;
  const Text read = ReadValueText(reader, record);
  if (read != Text::kRead) return read;
  const char* digits = record.value_text;
  while (*digits != '\0' && record.binary_length < kMaxBytes) {
    const char pair[] = {digits[0], digits[1], '\0'};
    record.binary[record.binary_length++] = static_cast<BYTE>(std::strtoul(pair, nullptr, 16));
    digits += pair[1] != '\0' ? 2 : 1;
  }
  return Text::kRead;
}

}  // namespace dcecfg

}  // namespace pal
