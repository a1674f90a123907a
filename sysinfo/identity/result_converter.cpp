#include "sysinfo/identity/result_converter.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "frame/result.h"
#include "frame/text.h"

namespace pal {
namespace {

// The answer of a source. The text is always terminated inside the buffer. The length may be more
// than the text needs: a source that writes nothing leaves the length of the buffer.
struct SourceAnswer {
  explicit SourceAnswer(IdentitySource source) {
    text[0] = '\0';
    result = source(text, &length);
    if (Failed(result)) return;
    text[sizeof(text) - 1] = '\0';
    text_length = std::strlen(text);
    length = std::min<DWORD>(length, sizeof(text));
    if (length > text_length) std::fill(text + text_length, text + length, '\0');
    // Both converters trace under the name of the request.
    kIdentityTrace.Info("PalSysIoRequestExA - 0x%x=pfnSYS_CALL(out:%s,out:%d)", result, text,
                        length);
  }

  char text[256];
  size_t text_length = 0;
  DWORD length = sizeof(text);
  HRESULT result;
};

HRESULT GiveOutA(const SourceAnswer& answer, char* buffer, DWORD* length) {
  if (length == nullptr) {
    kIdentityTrace.Error("PalProcessResultExA. Invalid input;procid:0x%x", GetCurrentProcessId());
    return PAL_SYSINFO_E_INVALID_INPUT;
  }
  HRESULT result = answer.result;
  if (*length < answer.length) {
    result = PAL_SYSINFO_E_TOO_SHORT;
    kIdentityTrace.Error("PalProcessResultExA. In buff too short. inlen:%d, procid:0x%x", *length,
                         GetCurrentProcessId());
  } else {
    std::copy_n(answer.text, answer.length, buffer);
  }
  *length = answer.length;
  kIdentityTrace.Info("PalProcessResultExA - %s,len:%d, procid:0x%x", answer.text, *length,
                      GetCurrentProcessId());
  return result;
}

HRESULT GiveOutW(const SourceAnswer& answer, WCHAR* buffer, DWORD* length) {
  if (length == nullptr) {
    kIdentityTrace.Error("PalSysIoRequestExW. Invalid input;procid:0x%x", GetCurrentProcessId());
    return PAL_SYSINFO_E_INVALID_INPUT;
  }
  const DWORD required = answer.length * static_cast<DWORD>(sizeof(WCHAR));
  const std::string_view text(answer.text, answer.text_length);
  const bool fits = *length >= required && Widen(std::span(buffer, answer.length), text);
  if (!fits) {
    *length = required;
    kIdentityTrace.Error("PalSysIoRequestExW. In buff too short. Required len:%d, procid:0x%x",
                         required, GetCurrentProcessId());
    return PAL_SYSINFO_E_TOO_SHORT;
  }
  *length = static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR));
  kIdentityTrace.Info("PalSysIoRequestExW - %ls,len:%d, procid:0x%x", buffer, *length,
                      GetCurrentProcessId());
  return answer.result;
}

}  // namespace

HRESULT PalProcessResultExA(IdentitySource source, char* buffer, DWORD* length) {
  const void* const place = buffer;
  HRESULT result = PAL_SYSINFO_E_INVALID_INPUT;
  kIdentityTrace.Info("PalProcessResultExA(fcn,0x%x,0x%x). procid:0x%x", place, length,
                      GetCurrentProcessId());
  if (buffer == nullptr && length == nullptr) {
    kIdentityTrace.Error("PalProcessResultExA(fcn,0x%x,0x%x). Invalid input;procid:0x%x", place,
                         length, GetCurrentProcessId());
  } else {
    const SourceAnswer answer(source);
    if (Failed(answer.result)) return answer.result;
    if (buffer == nullptr) {
      *length = answer.length;
      return answer.result;
    }
    result = GiveOutA(answer, buffer, length);
  }
  kIdentityTrace.Info("PalProcessResultExA - Exit. procid:0x%x", GetCurrentProcessId());
  return result;
}

HRESULT PalSysIoRequestExW(IdentitySource source, WCHAR* buffer, DWORD* length) {
  const void* const place = buffer;
  HRESULT result = PAL_SYSINFO_E_INVALID_INPUT;
  kIdentityTrace.Info("PalSysIoRequestExW(fcn,0x%x,0x%x) - Entry. procid:0x%x", place, length,
                      GetCurrentProcessId());
  if (buffer == nullptr && length == nullptr) {
    kIdentityTrace.Error("PalSysIoRequestExW(fcn,0x%x,0x%x) Input invalid. procid:0x%x", place,
                         length, GetCurrentProcessId());
  } else {
    const SourceAnswer answer(source);
    if (Failed(answer.result)) return answer.result;
    if (buffer == nullptr) {
      *length = answer.length * static_cast<DWORD>(sizeof(WCHAR));
      kIdentityTrace.Info("PalSysIoRequestExW(NULL,out:%d) procid:0x%x", *length,
                          GetCurrentProcessId());
      return answer.result;
    }
    result = GiveOutW(answer, buffer, length);
  }
  kIdentityTrace.Info("PalSysIoRequestExW - Exit. procid:0x%x", GetCurrentProcessId());
  return result;
}

}  // namespace pal
