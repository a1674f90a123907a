#include "sysinfo/identity/answer_text.h"
#include "sysinfo/identity/identity_sources.h"

namespace pal {
namespace {

constexpr DWORD kFirmwareInformation = 0x01012000;
constexpr size_t kInformationBytes = 128;
constexpr size_t kVersionOffset = 63;
constexpr DWORD kTracedLength = 13;  // the line always shows this as the version's length

}  // namespace

HRESULT PalGetFirmwareVer(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kIdentityTrace.Error("ERROR PalGetFirmwareVer. Input invalid\r\n");
    return E_FAIL;
  }
  BYTE information[kInformationBytes] = {};
  DWORD bytes = 0;
  if (KernelIoControl(kFirmwareInformation, nullptr, 0, information, sizeof(information), &bytes) ==
      FALSE) {
    kIdentityTrace.Error("ERROR PalGetFirmwareVer. KernelIoContrl failed. win32err:0x%x\r\n",
                         GetLastError());
    return E_FAIL;
  }
  const std::string_view version = TextOf(std::span(information).subspan(kVersionOffset));
  const DWORD room = *length;
  const bool fits = PutText(version, buffer, length);
  *length = static_cast<DWORD>(version.size() + 2);
  if (fits) return S_OK;
  kIdentityTrace.Error("ERROR PalGetFirmwareVer. Input buff too small. inlen:%d, verlen:%d\r\n",
                       room, kTracedLength);
  return E_FAIL;
}

}  // namespace pal
