// The model's name, and the name that is shown to users.
#include <algorithm>

#include "sysinfo/identity/answer_text.h"
#include "sysinfo/identity/identity_sources.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

constexpr WORD kModelParameter = 0x00D5;
constexpr WORD kDisplayModelParameter = 0x00D6;
constexpr size_t kNameBytes = 128;
constexpr BYTE kUnwritten = 0xEE;

// Drops the fill at the end, which a driver leaves that reports more bytes than it wrote.
std::span<const BYTE> WithoutFill(std::span<const BYTE> answer) {
  while (!answer.empty() && answer.back() == kUnwritten) answer = answer.first(answer.size() - 1);
  return answer;
}

}  // namespace

HRESULT PalGetModel(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kIdentityTrace.Error("ERROR PalGetModel. Input invalid\r\n");
    return E_FAIL;
  }
  BYTE answer[kNameBytes];
  std::fill_n(answer, kNameBytes, kUnwritten);
  DWORD bytes = 0;
  if (!PalReadNvParm(ParameterRequest(kModelParameter), answer, bytes) || bytes == 0) {
    kIdentityTrace.Error("ERROR PalGetModel. IOCTL request failed.  win32err: 0x%x\r\n",
                         GetLastError());
    return E_FAIL;
  }
  const std::span<const BYTE> name = WithoutFill(std::span(answer).first(bytes));
  if (!PutText(TextOf(name), buffer, length)) {
    kIdentityTrace.Error("ERROR PalGetModel. Input buffer too short\r\n");
    return E_FAIL;
  }
  return S_OK;
}

HRESULT PalGetDispayModel(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kIdentityTrace.Error("ERROR PalGetDispayModel. Input invalid\r\n");
    return PAL_SYSINFO_E_INVALID_INPUT;
  }
  BYTE answer[kNameBytes] = {};
  DWORD bytes = 0;
  if (!PalReadNvParm(ParameterRequest(kDisplayModelParameter), answer, bytes) || bytes == 0) {
    kIdentityTrace.Error("PalGetDispayModel - DVL_NVPARM_DISPLAY_NAME failed\r\n");
    return E_FAIL;
  }
  if (!PutText(TextOf(std::span(answer).first(bytes)), buffer, length)) {
    kIdentityTrace.Error("PalGetDispayModel - Input buffer too short.\r\n");
    return E_FAIL;
  }
  return S_OK;
}

}  // namespace pal
