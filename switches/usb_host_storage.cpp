// Whether the device takes USB disks: the names under which its client drivers have their DLL.
#include <array>
#include <optional>
#include <span>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "include/palstore.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kUsb};

constexpr WideText kDriversPath = TEXT("\\Drivers\\USB\\ClientDrivers\\Mass_Storage_Class");
constexpr size_t kMaxDllBytes = 520;

using ValueFailure = TraceSource::Format<const WCHAR*, const WCHAR*, LONG>;

// One of the two walks: the text that each driver has under one name gets the other.
struct Direction {
  const WCHAR* from;
  const WCHAR* to;
  std::optional<ValueFailure> read_failed;  // nothing: it is not traced
  ValueFailure write_failed;
  TraceSource::Format<> done;
};
constexpr const WCHAR* kVisibleName = TEXT("Dll");
constexpr const WCHAR* kHiddenName = TEXT("Dll__");
constexpr Direction kDisable{kVisibleName, kHiddenName, std::nullopt,
                             "Error backing up HKLM\\%ls\\%ls. dwRet = %u",
                             "Successfully disabled all USB Mass Storage client drivers"};
constexpr Direction kEnable{
    kHiddenName, kVisibleName,
    ValueFailure("Error reading restore name from HKLM\\%ls\\%ls. dwRet = %u"),
    "Error restoring up HKLM\\%ls\\%ls. dwRet = %u",
    "Successfully enabled all USB Mass Storage client drivers"};

constexpr ValueFailure kDeleteFailed = "Error deleting HKLM\\%ls\\%ls. dwRet = %u";

// The client drivers, one after another.
class ClientDrivers {
 public:
  // Goes to the first, and then to the next. False behind the last and on a failure, which is
  // traced.
  [[nodiscard]] bool Next();
  [[nodiscard]] LONG error() const { return error_; }

  [[nodiscard]] HKEY key() const { return driver_.get(); }

  // The error of an operation on a value of the driver, which is traced where there is one.
  [[nodiscard]] LONG Checked(LONG error, const std::optional<ValueFailure>& line,
                             const WCHAR* value_name) const;

 private:
  using Path = std::array<WCHAR, kDriversPath.size() + 1 + MAX_PATH>;

  // Of the key that was opened last.
  [[nodiscard]] Path PathForTrace() const;
  void Open(HKEY parent, const WCHAR* path, UniqueRegistryKey& key);

  UniqueRegistryKey drivers_;
  UniqueRegistryKey driver_;
  std::array<WCHAR, MAX_PATH> name_;  // of the driver; empty for the key above all of them
  DWORD index_ = 0;
  LONG error_ = ERROR_SUCCESS;
};

ClientDrivers::Path ClientDrivers::PathForTrace() const {
  Path path{};
  const bool fits =
      Copy(path, kDriversPath) &&
      (name_.front() == WCHAR{} || (Append(path, TEXT("\\")) && Append(path, name_.data())));
  static_cast<void>(fits);  // there is room for it
  return path;
}

void ClientDrivers::Open(HKEY parent, const WCHAR* path, UniqueRegistryKey& key) {
  error_ = OpenRegistryKey(parent, path, KEY_ALL_ACCESS, key);
  if (error_ == ERROR_SUCCESS) return;
  kTrace.Error("Error opening HKLM\\%ls. dwRet = %u", PathForTrace().data(), error_);
}

LONG ClientDrivers::Checked(LONG error, const std::optional<ValueFailure>& line,
                            const WCHAR* value_name) const {
  if (error != ERROR_SUCCESS && line) {
    const Path path = PathForTrace();
    kTrace.Error(*line, path.data(), value_name, error);
  }
  return error;
}

bool ClientDrivers::Next() {
  name_.front() = WCHAR{};
  if (!drivers_) Open(HKEY_LOCAL_MACHINE, kDriversPath.data(), drivers_);
  if (error_ != ERROR_SUCCESS) return false;
  auto units = static_cast<DWORD>(name_.size());
  const LONG error = RegEnumKeyExW(drivers_.get(), index_++, name_.data(), &units, nullptr, nullptr,
                                   nullptr, nullptr);
  if (error == ERROR_NO_MORE_ITEMS) return false;
  if (error != ERROR_SUCCESS) {
    kTrace.Error("Error enumerating USB Mass Storage Client drivers. dwRet = %u", error);
    error_ = error;
    return false;
  }
  Open(drivers_.get(), name_.data(), driver_);
  return error_ == ERROR_SUCCESS;
}

// A text of a driver, as it is stored.
struct StoredText {
  std::array<BYTE, kMaxDllBytes> data;
  DWORD bytes;
};

// False where the driver has no such value or one of another type; `error` is then ERROR_SUCCESS.
bool ReadStoredText(HKEY driver, const WCHAR* name, StoredText& text, LONG& error) {
  text.bytes = kMaxDllBytes;
  DWORD type = REG_NONE;
  error = RegQueryValueExW(driver, name, nullptr, &type, text.data.data(), &text.bytes);
  const bool is_other = error == ERROR_FILE_NOT_FOUND ||
                        ((error == ERROR_SUCCESS || error == ERROR_MORE_DATA) && type != REG_SZ);
  if (is_other) error = ERROR_SUCCESS;
  return !is_other && error == ERROR_SUCCESS;
}

// The text has both names for a moment, and so is never lost.
LONG MoveText(const ClientDrivers& drivers, const Direction& direction) {
  StoredText text;
  LONG error = ERROR_SUCCESS;
  if (!ReadStoredText(drivers.key(), direction.from, text, error)) {
    return drivers.Checked(error, direction.read_failed, direction.from);
  }
  error = drivers.Checked(
      RegSetValueExW(drivers.key(), direction.to, 0, REG_SZ, text.data.data(), text.bytes),
      direction.write_failed, kVisibleName);
  if (error != ERROR_SUCCESS) return error;
  return drivers.Checked(RegDeleteValueW(drivers.key(), direction.from), kDeleteFailed,
                         direction.from);
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALStore_SetUsbHostMassStorageEnable(BOOL enable) {
  const pal::Direction& direction = enable != FALSE ? pal::kEnable : pal::kDisable;
  pal::ClientDrivers drivers;
  while (drivers.Next()) {
    const LONG error = pal::MoveText(drivers, direction);
    if (error != ERROR_SUCCESS) return pal::HResultFromWin32(error);
  }
  if (drivers.error() != ERROR_SUCCESS) return pal::HResultFromWin32(drivers.error());
  pal::kTrace.Info(direction.done);
  return S_OK;
}

HRESULT PALAPI PALStore_GetUsbHostMassStorageEnable(DWORD* enabled) {
  if (enabled == nullptr) return PAL_STORE_E_INVALID_INPUT;
  *enabled = 0;
  pal::ClientDrivers drivers;
  while (drivers.Next()) {
    LONG error = ERROR_SUCCESS;
    pal::StoredText text;
    const bool has_dll = pal::ReadStoredText(drivers.key(), pal::kVisibleName, text, error);
    if (error != ERROR_SUCCESS) return pal::HResultFromWin32(error);
    if (!has_dll) continue;
    *enabled = 1;
    return S_OK;
  }
  if (drivers.error() != ERROR_SUCCESS) return pal::HResultFromWin32(drivers.error());
  pal::kTrace.Info(pal::kDisable.done);  // the line of the switch, also where nothing was switched
  return S_OK;
}
