// The name and the version of the operating system.
#include <charconv>
#include <iterator>

#include "sysinfo/identity/answer_text.h"
#include "sysinfo/identity/identity_sources.h"
#include "sysinfo/identity/oem_information.h"

namespace pal {
namespace {

bool ReadWindowsCeVersion(OSVERSIONINFOW& version) {
  return ReadOsVersion(version) && version.dwPlatformId == VER_PLATFORM_WIN32_CE;
}

bool IsPocketPc(WideText platform_type) {
  constexpr WideText kPocketPc = TEXT("PocketPC");
  return platform_type.size() == kPocketPc.size() &&
         _wcsnicmp(platform_type.data(), kPocketPc.data(), kPocketPc.size()) == 0;
}

}  // namespace

HRESULT PalGetOS(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kIdentityTrace.Error("ERROR PalGetOS. Input invalid\r\n");
    return PAL_SYSINFO_E_INVALID_INPUT;
  }
  OSVERSIONINFOW version;
  if (!ReadWindowsCeVersion(version)) return PAL_SYSINFO_E_SOURCE_FAILED;
  const PlatformType platform_type;
  char pocket_pc[16] = {};
  std::string_view name = "WINCE";
  if (IsPocketPc(platform_type.text()) && Narrow(pocket_pc, platform_type.text())) {
    name = pocket_pc;
  }
  return PutText(name, buffer, length) ? S_OK : PAL_SYSINFO_E_SOURCE_TOO_LONG;
}

HRESULT PalGetOSVer(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kIdentityTrace.Error("ERROR PalGetOSVer. Input invalid\r\n");
    return PAL_SYSINFO_E_INVALID_INPUT;
  }
  OSVERSIONINFOW version;
  if (!ReadWindowsCeVersion(version)) return PAL_SYSINFO_E_SOURCE_FAILED;
  char text[36];  // three numbers of at most eleven characters, and two dots
  char* end = text;
  for (const DWORD number :
       {version.dwMajorVersion, version.dwMinorVersion, version.dwBuildNumber}) {
    if (end != text) *end++ = '.';
    end = std::to_chars(end, std::end(text), static_cast<LONG>(number)).ptr;
  }
  return PutText({text, end}, buffer, length) ? S_OK : PAL_SYSINFO_E_SOURCE_FAILED;
}

}  // namespace pal
