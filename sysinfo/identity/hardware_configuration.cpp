#include <algorithm>
#include <span>

#include "sysinfo/identity/answer_text.h"
#include "sysinfo/identity/fallbacks.h"
#include "sysinfo/identity/identity_cache.h"
#include "sysinfo/identity/identity_sources.h"
#include "sysinfo/identity/oem_information.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

constexpr WORD kConfigurationParameter = 0x000A;
constexpr WORD kRxConfigurationParameter = 0x0027;
constexpr size_t kConfigurationBytes = 32;

constinit IdentityCache<kConfigurationBytes> cache;

using Configuration = char[kConfigurationBytes];

// Asks the parameter, then the registry; "CG0" where both have nothing. A longer text is cut to the
// size of the cache.
std::string_view ReadConfiguration(const OemInformation& oem, Configuration& configuration) {
  const WORD parameter =
      oem.text() == TEXT("Dravonel Rx") ? kRxConfigurationParameter : kConfigurationParameter;
  BYTE answer[kConfigurationBytes] = {};
  IdentityRegistryText registry_text;
  DWORD bytes = 0;
  std::string_view text;
  // A count of 0 is no failure here: the buffer's zeros end the text.
  if (PalReadNvParm(ParameterRequest(parameter), answer, bytes)) {
    text = TextOf(std::span(answer).first(bytes > 0 ? bytes : sizeof(answer)));
  }
  if (text.empty()) text = ReadIdentityRegistry(TEXT("HardwareCfgString"), registry_text);
  if (text.empty()) text = "CG0";
  text = text.substr(0, kConfigurationBytes - 1);
  std::copy(text.begin(), text.end(), configuration);
  return {configuration, text.size()};
}

}  // namespace

HRESULT PalGetHwConfig(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kIdentityTrace.Error("ERROR PalGetHwConfig. Input invalid\r\n");
    return PAL_SYSINFO_E_INVALID_INPUT;
  }
  const OemInformation oem;
  if (oem.empty()) return PAL_SYSINFO_E_SOURCE_FAILED;
  Configuration configuration;
  std::string_view text = cache.Read(configuration);
  if (text.empty()) {
    text = ReadConfiguration(oem, configuration);
    cache.Fill(text);
  }
  if (!PutText(text, buffer, length)) return PAL_SYSINFO_E_SOURCE_TOO_LONG;
  *length = static_cast<DWORD>(text.size());
  return S_OK;
}

}  // namespace pal
