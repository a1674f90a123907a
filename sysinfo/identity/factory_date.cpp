#include <array>

#include "sysinfo/identity/answer_text.h"
#include "sysinfo/identity/identity_sources.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

constexpr size_t kDateBytes = 4;

bool IsDateParameter(WORD id) {
  return id == 0x0003 || id == 0x0004;
}

// Writes a packed decimal byte as two digits; as three where a digit above 9 makes more than 99.
char* PutPackedDecimal(char* to, BYTE byte) {
  const int number = (byte >> 4) * 10 + (byte & 0xF);
  if (number > 99) *to++ = static_cast<char>('0' + number / 100);
  *to++ = static_cast<char>('0' + number / 10 % 10);
  *to++ = static_cast<char>('0' + number % 10);
  return to;
}

}  // namespace

HRESULT PalGetDate(WORD id, char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr || !IsDateParameter(id)) {
    kIdentityTrace.Error("PalGetDate. Input invalid\r\n");
    return S_OK;
  }
  BYTE date[kDateBytes] = {};  // century, year, month, day
  DWORD bytes = 0;
  if (!PalReadNvParm(ParameterRequest<4>(id), date, bytes) || bytes == 0) {
    kIdentityTrace.Error("PalGetDate - KernelIoControl failure.  winerr:0x%x\r\n", GetLastError());
    return S_OK;
  }
  char text[3 * kDateBytes + 2];
  char* end = PutPackedDecimal(text, date[2]);
  *end++ = '/';
  end = PutPackedDecimal(end, date[3]);
  *end++ = '/';
  end = PutPackedDecimal(end, date[0]);
  end = PutPackedDecimal(end, date[1]);
  // A text that does not fit counts as a date that cannot be read: this source never fails.
  static_cast<void>(PutText({text, end}, buffer, length));
  return S_OK;
}

}  // namespace pal
