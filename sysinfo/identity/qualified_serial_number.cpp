// The serial number with the hardware configuration in front of it.
#include <algorithm>
#include <cstring>
#include <span>

#include "frame/result.h"
#include "sysinfo/identity/answer_text.h"
#include "sysinfo/identity/identity_sources.h"

namespace pal {
namespace {

constexpr size_t kConfigurationCharacters = 4;
constexpr size_t kMostSerialCharacters = 11;

}  // namespace

HRESULT PalGetQualifiedSerialNum(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) return PAL_SYSINFO_E_INVALID_INPUT;
  char configuration[128];
  DWORD configuration_length = sizeof(configuration);
  HRESULT result = PalGetHwConfig(configuration, &configuration_length);
  if (Failed(result)) return result;
  char number[512];
  DWORD number_length = sizeof(number);
  result = PalGetSerialNum(number, &number_length);
  if (Failed(result)) return result;
  if (std::strlen(number) > kMostSerialCharacters) {
    number[0] = '\0';  // the answer where the address cannot be read
    number_length = sizeof(number);
    static_cast<void>(PalGetEtherMACAddress(number, &number_length));  // never fails
  }
  const size_t kept = std::min<size_t>(configuration_length, kConfigurationCharacters);
  if (!Copy(std::span(configuration).subspan(kept), number)) return E_FAIL;
  return PutText(configuration, buffer, length) ? S_OK : E_FAIL;
}

}  // namespace pal
