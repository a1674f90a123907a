#include "sysinfo/operating_system.h"

#include <charconv>
#include <iterator>

#include "sysinfo/answer_text.h"
#include "sysinfo/identity_result.h"
#include "sysinfo/identity_sources.h"
#include "sysinfo/identity_trace.h"
#include "sysinfo/oem_information.h"

using pal::kIdentityTrace;

namespace {

constexpr DWORD kWindowsCe = 3;  // VER_PLATFORM_WIN32_CE

bool ReadWindowsCeVersion(OSVERSIONINFOW& version) {
  return pal::ReadOsVersion(version) && version.dwPlatformId == kWindowsCe;
}

bool IsPocketPc(pal::WideText platform_type) {
  constexpr pal::WideText kPocketPc = TEXT("PocketPC");
  return platform_type.size() == kPocketPc.size() &&
         _wcsnicmp(platform_type.data(), kPocketPc.data(), kPocketPc.size()) == 0;
}

}  // namespace

HRESULT PalGetOS(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kIdentityTrace.Error("ERROR PalGetOS. Input invalid\r\n");
    return pal::kInvalidInput;
  }
  OSVERSIONINFOW version;
  if (!ReadWindowsCeVersion(version)) return pal::kSourceFailed;
  const pal::PlatformType platform_type;
  char pocket_pc[16] = {};
  std::string_view name = "WINCE";
  if (IsPocketPc(platform_type.text()) && pal::Narrow(pocket_pc, platform_type.text())) {
    name = pocket_pc;
  }
  return pal::PutText(name, buffer, length) ? S_OK : pal::kSourceTooLong;
}

HRESULT PalGetOSVer(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kIdentityTrace.Error("ERROR PalGetOSVer. Input invalid\r\n");
    return pal::kInvalidInput;
  }
  OSVERSIONINFOW version;
  if (!ReadWindowsCeVersion(version)) return pal::kSourceFailed;
  char text[36];  // three numbers of at most eleven characters, and two dots
  char* end = text;
  for (const DWORD number :
       {version.dwMajorVersion, version.dwMinorVersion, version.dwBuildNumber}) {
    if (end != text) *end++ = '.';
    end = std::to_chars(end, std::end(text), static_cast<LONG>(number)).ptr;
  }
  return pal::PutText({text, end}, buffer, length) ? S_OK : pal::kSourceFailed;
}
