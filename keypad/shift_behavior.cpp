// The behaviour of the shift keys of the active layout.
#include <array>
#include <optional>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/trace.h"
#include "include/palkey.h"
#include "keypad/layout.h"

namespace pal {
namespace {

constexpr size_t kMaxNameUnits = 260;
// More values than any key has: a caller must not hang on a broken registry.
constexpr DWORD kMostValues = 0x10000;
constexpr BYTE kBehaviorBits = 7;
constexpr WideText kShiftKeyPrefix = TEXT("ShiftKey");

// The bit of each behaviour.
constexpr std::array<BYTE, 3> kBitOf = {1, 2, 4};

struct ShiftKey {
  std::array<WCHAR, kMaxNameUnits + 1> name{};
  std::array<BYTE, 4> data{};
};

struct OpeningLines {
  TraceSource::Format<const WCHAR*, DWORD> open_failed;
  TraceSource::Format<const WCHAR*, const WCHAR*, DWORD> query_failed;
};

// Opens the shift keys of the active layout. `path` is their key.
LONG OpenShiftKeys(const OpeningLines& lines, LayoutPath& path, UniqueRegistryKey& key) {
  UniqueRegistryKey keyboard;
  LONG error = OpenKeypadKey(kKeyboardPath, keyboard);
  if (error != ERROR_SUCCESS) {
    kKeypadTrace.Error(lines.open_failed, kKeyboardPath, static_cast<DWORD>(error));
    return error;
  }
  LayoutPath layout;
  error = ReadLayoutPath(keyboard, kActiveLayoutValue, layout);
  if (error != ERROR_SUCCESS) {
    kKeypadTrace.Error(lines.query_failed, kKeyboardPath, kActiveLayoutValue,
                       static_cast<DWORD>(error));
    return error;
  }
  path = BelowLayout(layout, TEXT("\\ShiftKeys"));
  const WCHAR* const shift_keys = path.data();
  error = OpenKeypadKey(shift_keys, key);
  if (error != ERROR_SUCCESS) {
    kKeypadTrace.Error(lines.open_failed, shift_keys, static_cast<DWORD>(error));
  }
  return error;
}

// The values below the shift keys, one after another.
class ShiftKeyList {
 public:
  explicit ShiftKeyList(HKEY key) : key_(key) {}

  // Goes to the next shift key and skips other values. False at the end of the list, and where the
  // next value cannot be read.
  [[nodiscard]] bool Next(ShiftKey& shift_key) {
    while (true) {
      DWORD type = REG_NONE;
      DWORD bytes = 0;
      const LONG error = Read(shift_key, type, bytes);
      if (error == ERROR_NO_MORE_ITEMS) return false;
      const bool is_answer = error == ERROR_SUCCESS || error == ERROR_MORE_DATA;
      if (!is_answer || index_ == kMostValues) {
        error_ = is_answer ? ERROR_MORE_DATA : error;
        return false;
      }
      const bool is_shift_key = error == ERROR_SUCCESS && type == REG_BINARY &&
                                bytes == shift_key.data.size() && HasShiftKeyName(shift_key);
      if (is_shift_key) return true;
    }
  }
  // Of the read that ended the list, or ERROR_SUCCESS.
  [[nodiscard]] LONG error() const { return error_; }

 private:
  [[nodiscard]] LONG Read(ShiftKey& shift_key, DWORD& type, DWORD& bytes) {
    auto units = static_cast<DWORD>(shift_key.name.size());
    bytes = static_cast<DWORD>(shift_key.data.size());
    return RegEnumValueW(key_, index_++, shift_key.name.data(), &units, nullptr, &type,
                         shift_key.data.data(), &bytes);
  }
  [[nodiscard]] static bool HasShiftKeyName(const ShiftKey& shift_key) {
    return _wcsnicmp(shift_key.name.data(), kShiftKeyPrefix.data(), kShiftKeyPrefix.size()) == 0;
  }

  HKEY key_;
  DWORD index_ = 0;
  LONG error_ = ERROR_SUCCESS;
};

// A layout without shift keys has the first behaviour.
DWORD BehaviorOf(std::optional<BYTE> bits) {
  if (!bits) return PAL_SHIFT_BEHAVIOR_0;
  DWORD behavior = 0;
  while (behavior < kBitOf.size() && (*bits & kBitOf[behavior]) == 0) ++behavior;
  return behavior;
}
static_assert(kBitOf.size() == PAL_SHIFT_BEHAVIOR_MIXED);

}  // namespace
}  // namespace pal

HRESULT PALAPI PALKEYGetShiftBehavior(DWORD* behavior) {
  constexpr pal::OpeningLines kLines{
      "PALKEYGetShiftBehavior - Error opening HKLM\\%ls. dwRet = 0x%x\r\n",
      "PALKEYGetShiftBehavior - Error querying HKLM\\%ls\\%ls. dwRet = 0x%x\r\n",
  };
  if (behavior == nullptr) return E_FAIL;
  pal::LayoutPath path;
  pal::UniqueRegistryKey key;
  const LONG error = pal::OpenShiftKeys(kLines, path, key);
  if (error != ERROR_SUCCESS) return pal::HResultFromWin32(error);

  *behavior = 0xFFFFFFFF;
  std::optional<BYTE> bits;
  pal::ShiftKeyList shift_keys(key.get());
  pal::ShiftKey shift_key;
  while (shift_keys.Next(shift_key)) {
    const BYTE own_bits = shift_key.data.front() & pal::kBehaviorBits;
    if (bits && own_bits != *bits) {
      pal::kKeypadTrace.Info(
          "PALKEYGetShiftBehavior - Not all shift keys have the same behavior\r\n");
      *behavior = PAL_SHIFT_BEHAVIOR_MIXED;
      return S_OK;
    }
    bits = own_bits;
  }
  if (shift_keys.error() != ERROR_SUCCESS) {
    pal::kKeypadTrace.Error(
        "PALKEYGetShiftBehavior - Error enumerating values HKLM\\%ls. dwRet = 0x%x\r\n",
        path.data(), static_cast<DWORD>(shift_keys.error()));
    return pal::HResultFromWin32(shift_keys.error());
  }
  *behavior = pal::BehaviorOf(bits);
  return S_OK;
}

HRESULT PALAPI PALKEYSetShiftBehavior(DWORD behavior) {
  constexpr pal::OpeningLines kLines{
      "PALKEYSetShiftBehavior - Error opening HKLM\\%ls. dwRet = 0x%x\r\n",
      "PALKEYSetShiftBehavior - Error querying HKLM\\%ls\\%ls. dwRet = 0x%x\r\n",
  };
  if (behavior >= pal::kBitOf.size()) {
    pal::kKeypadTrace.Error("PALKEYSetShiftBehavior - Invalid argument %d\r\n", behavior);
    return E_INVALIDARG;
  }
  pal::LayoutPath path;
  pal::UniqueRegistryKey key;
  LONG error = pal::OpenShiftKeys(kLines, path, key);
  if (error != ERROR_SUCCESS) return pal::HResultFromWin32(error);

  pal::ShiftKeyList shift_keys(key.get());
  pal::ShiftKey shift_key;
  while (shift_keys.Next(shift_key)) {
    BYTE& first = shift_key.data.front();
    first = static_cast<BYTE>((first & ~pal::kBehaviorBits) | pal::kBitOf[behavior]);
    error = WriteBytes(key, shift_key.name.data(), shift_key.data);
    if (error != ERROR_SUCCESS) {
      pal::kKeypadTrace.Error(
          "PALKEYSetShiftBehavior - Error saving HKLM\\%ls\\%ls. dwRet = 0x%x\r\n", path.data(),
          shift_key.name.data(), static_cast<DWORD>(error));
      return pal::HResultFromWin32(error);
    }
  }
  if (shift_keys.error() != ERROR_SUCCESS) {
    pal::kKeypadTrace.Error(
        "PALKEYSetShiftBehavior - Error enumerating HKLM\\%ls. dwRet = 0x%x\r\n", path.data(),
        static_cast<DWORD>(shift_keys.error()));
  }
  return S_OK;  // also where the list ended with an error
}
