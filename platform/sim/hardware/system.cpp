#include "platform/sim/hardware/system.h"

#include <algorithm>

namespace sim {

QueryAnswer FirmwareInformation(std::string_view version) {
  constexpr std::size_t kBytes = 128;
  constexpr std::size_t kVersionOffset = 63;
  QueryAnswer answer;
  answer.bytes.resize(kBytes);
  std::copy_n(version.begin(), std::min(version.size(), kBytes - kVersionOffset),
              answer.bytes.begin() + kVersionOffset);
  return answer;
}

QueryAnswer DeviceIdRecord(std::string_view text) {
  constexpr std::uint32_t kRecordBytes = 20;
  constexpr std::uint32_t kHeaderBytes = 8;
  const auto id_bytes = static_cast<std::uint32_t>(kHeaderBytes + text.size());
  QueryAnswer answer;
  for (const std::uint32_t field : {kRecordBytes + id_bytes, 0U, 0U, kRecordBytes, id_bytes}) {
    for (const unsigned shift : {0U, 8U, 16U, 24U}) {
      answer.bytes.push_back(static_cast<std::uint8_t>(field >> shift));
    }
  }
  answer.bytes.resize(kRecordBytes + kHeaderBytes);
  answer.bytes.insert(answer.bytes.end(), text.begin(), text.end());
  return answer;
}

}  // namespace sim
