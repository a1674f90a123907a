// What the platform says of itself: the version of the operating system, the type of the platform,
// and the OEM information.
#ifndef SYSINFO_IDENTITY_OEM_INFORMATION_H_
#define SYSINFO_IDENTITY_OEM_INFORMATION_H_

#include <span>

#include "frame/text.h"
#include "platform/wince.h"

namespace pal {

// A text of SystemParametersInfoW, at most as long as its buffer.
template <size_t kUnits>
class SystemText {
 public:
  // Empty where the call fails or writes nothing.
  explicit SystemText(UINT action) {
    if (SystemParametersInfoW(action, sizeof(buffer_), buffer_, 0) == FALSE) buffer_[0] = WCHAR{};
  }
  [[nodiscard]] bool empty() const { return buffer_[0] == WCHAR{}; }
  [[nodiscard]] WideText text() const { return {buffer_, Length<WCHAR>(buffer_)}; }

 private:
  WCHAR buffer_[kUnits] = {};  // an answer may have no terminator
};

// The maker's name of the family of models, such as "Dravonel Rx" or "Greywing 7": 512 bytes. Read
// again at each query: a buffer for the whole process would be written by two threads at once.
class OemInformation : public SystemText<256> {
 public:
  OemInformation() : SystemText(SPI_GETOEMINFO) {}

  // Whether it begins with "Greywing", in whatever case.
  [[nodiscard]] bool IsGreywing() const {
    constexpr WideText kGreywing = TEXT("Greywing");
    return text().size() >= kGreywing.size() &&
           _wcsnicmp(text().data(), kGreywing.data(), kGreywing.size()) == 0;
  }
};

// 520 bytes.
class PlatformType : public SystemText<260> {
 public:
  PlatformType() : SystemText(SPI_GETPLATFORMTYPE) {}
};

// False where the call fails; all numbers of `version` are then 0.
[[nodiscard]] inline bool ReadOsVersion(OSVERSIONINFOW& version) {
  version = {};
  version.dwOSVersionInfoSize = sizeof(version);
  if (GetVersionExW(&version) != FALSE) return true;
  version = {};
  return false;
}

}  // namespace pal

#endif  // SYSINFO_IDENTITY_OEM_INFORMATION_H_
