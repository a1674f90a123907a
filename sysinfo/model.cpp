#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "frame/text.h"
#include "frame/trace.h"
#include "sysinfo/identity.h"

namespace {

constexpr pal::TraceSource kTrace{pal::Facility::kDeviceInformation};

constexpr DWORD kReadParameter = 0x010122C4;
constexpr WORD kModelParameter = 0x00D5;

}  // namespace

HRESULT PalGetModel(char* buffer, DWORD* length) {
  if (buffer == nullptr || length == nullptr) {
    kTrace.Error("ERROR PalGetModel. Input invalid\r\n");
    return E_FAIL;
  }
  WORD parameter = kModelParameter;
  std::array<char, 128> answer{};
  answer.fill('\xEE');
  DWORD returned = 0;
  if (!KernelIoControl(kReadParameter, &parameter, sizeof(parameter), answer.data(),
                       static_cast<DWORD>(answer.size()), &returned) ||
      returned == 0) {
    kTrace.Error("ERROR PalGetModel. IOCTL request failed.  win32err: 0x%x\r\n", GetLastError());
    return E_FAIL;
  }
  const auto bytes = std::span<const char>(answer).first(std::min<size_t>(returned, answer.size()));
  const std::string_view model(bytes.data(), pal::Length(bytes));
  if (!pal::Copy(std::span(buffer, *length), model)) {
    kTrace.Error("ERROR PalGetModel. Input buffer too short\r\n");
    return E_FAIL;
  }
  *length = static_cast<DWORD>(model.size() + 1);
  return S_OK;
}
