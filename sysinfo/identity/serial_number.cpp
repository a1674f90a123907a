#include <algorithm>
#include <cstring>

#include "sysinfo/identity/answer_text.h"
#include "sysinfo/identity/fallbacks.h"
#include "sysinfo/identity/identity_cache.h"
#include "sysinfo/identity/identity_sources.h"
#include "sysinfo/identity/oem_information.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

constexpr WORD kSerialTextParameter = 0x0048;
constexpr WORD kSerialBytesParameter = 0x0002;
constexpr DWORD kParameterBytes = 256;  // an answer that fills it is refused
constexpr size_t kRawBytes = 6;
constexpr DWORD kGetDeviceId = 0x01010054;  // IOCTL_HAL_GET_DEVICEID
constexpr size_t kDeviceIdBytes = 512;

// The longest source is the device id, with up to 503 characters.
constexpr size_t kSerialBytes = 512;
using SerialNumber = char[kSerialBytes];

constinit IdentityCache<kSerialBytes> cache;

// The platform's DEVICE_ID: offsets from its beginning, lengths in bytes.
struct DeviceId {
  DWORD size;
  DWORD preset_id_offset;
  DWORD preset_id_bytes;
  DWORD platform_id_offset;
  DWORD platform_id_bytes;
};
static_assert(sizeof(DeviceId) == 20);

// Each step below writes what it finds to `serial`, with a terminator. It returns an empty text
// where it finds nothing.
std::string_view Keep(std::string_view text, SerialNumber& serial) {
  return Copy(serial, text) ? std::string_view(serial, text.size()) : std::string_view();
}

bool ReadSerialParameter(WORD id, std::span<BYTE> answer, DWORD& bytes) {
  return PalReadNvParm(ParameterRequest(id), answer, bytes) && bytes > 0 && bytes < kParameterBytes;
}

// From Windows CE 5.2 on one leading zero is dropped, before that all of them. Below CE 6 the minor
// version alone decides: 4.2 counts as recent too.
size_t ZerosToDrop(std::string_view digits) {
  OSVERSIONINFOW version;
  static_cast<void>(ReadOsVersion(version));  // an unknown version counts as old
  size_t zeros = 0;
  while (zeros < digits.size() && digits[zeros] == '0') ++zeros;
  const bool is_recent = version.dwMajorVersion > 5 || version.dwMinorVersion >= 2;
  return is_recent ? std::min<size_t>(zeros, 1) : zeros;
}

std::string_view SerialOfRawBytes(std::span<const BYTE, kRawBytes> bytes, SerialNumber& serial) {
  char digits[2 * kRawBytes];
  char* end = digits;
  for (size_t at = kRawBytes; at > 0; --at) {
    end = PutHexadecimal(end, bytes[at - 1], kUpperCaseDigits);
  }
  std::string_view text(digits, sizeof(digits));
  text.remove_prefix(ZerosToDrop(text));
  return Keep(text, serial);
}

// An empty text parameter counts as read: the parameter with the raw bytes is then not asked.
std::string_view SerialOfParameters(WideText oem, SerialNumber& serial) {
  BYTE answer[kParameterBytes] = {};
  DWORD bytes = 0;
  if (ReadSerialParameter(kSerialTextParameter, answer, bytes)) {
    return Keep(TextOf(std::span(answer).first(bytes)), serial);
  }
  std::fill_n(answer, kParameterBytes, BYTE{0});
  if (!ReadSerialParameter(kSerialBytesParameter, answer, bytes)) return {};
  if (oem == TEXT("Dravonel Rx") || oem == TEXT("Dravonel RQ2")) {
    return Keep(TextOf(std::span(answer).first(bytes)), serial);
  }
  return SerialOfRawBytes(std::span(answer).first<kRawBytes>(), serial);
}

// The platform id begins with eight bytes that are no part of the number.
std::string_view SerialOfDeviceId(SerialNumber& serial) {
  constexpr DWORD kHeaderBytes = 8;
  BYTE record[kDeviceIdBytes] = {};
  DWORD bytes = 0;
  if (KernelIoControl(kGetDeviceId, nullptr, 0, record, sizeof(record), &bytes) == FALSE) return {};
  DeviceId id;
  std::memcpy(&id, record, sizeof(id));
  if (id.platform_id_offset == 0 || id.platform_id_bytes < kHeaderBytes) return {};
  if (id.platform_id_offset > sizeof(record)) return {};
  if (id.platform_id_bytes > sizeof(record) - id.platform_id_offset) return {};
  const std::span<const BYTE> platform_id =
      std::span(record).subspan(id.platform_id_offset, id.platform_id_bytes);
  return Keep(TextOf(platform_id.subspan(kHeaderBytes)), serial);
}

std::string_view SerialOfRegistryOrAdapter(SerialNumber& serial) {
  IdentityRegistryText registry_text;
  const std::string_view text = ReadIdentityRegistry(TEXT("SerialNumber"), registry_text);
  if (!text.empty()) return Keep(text, serial);
  const auto address = AdapterAddress();
  return Keep({address.data(), address.size()}, serial);
}

std::string_view ReadSerial(const OemInformation& oem, SerialNumber& serial) {
  std::string_view text = SerialOfParameters(oem.text(), serial);
  if (text.empty() && oem.IsGreywing()) text = SerialOfDeviceId(serial);
  if (text.empty()) text = SerialOfRegistryOrAdapter(serial);
  return text;
}

}  // namespace

HRESULT PalGetSerialNum(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kIdentityTrace.Error("ERROR PalGetSerialNum. Input invalid\r\n");
    return PAL_SYSINFO_E_INVALID_INPUT;
  }
  const OemInformation oem;
  if (oem.empty()) return PAL_SYSINFO_E_SOURCE_FAILED;
  SerialNumber serial;
  std::string_view text = cache.Read(serial);
  if (text.empty()) {
    text = ReadSerial(oem, serial);
    cache.Fill(text);
  }
  return PutText(text, buffer, length) ? S_OK : PAL_SYSINFO_E_SOURCE_TOO_LONG;
}

}  // namespace pal
