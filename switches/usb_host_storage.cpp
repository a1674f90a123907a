// Whether the device takes USB disks: the names under which its client drivers have their DLL.
#include <array>
#include <optional>
#include <span>

#include "frame/registry.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "include/palstore.h"
#include "switches/usb_result.h"

namespace {

constexpr pal::TraceSource kTrace{pal::Facility::kUsb};

constexpr pal::WideText kDriversPath = TEXT("\\Drivers\\USB\\ClientDrivers\\Mass_Storage_Class");
constexpr size_t kMaxDllBytes = 520;

using ValueFailure = pal::TraceSource::Format<const WCHAR*, const WCHAR*, LONG>;

// One of the two walks: the text that each driver has under one name gets the other.
struct Direction {
  const WCHAR* from;
  const WCHAR* to;
  std::optional<ValueFailure> read_failed;  // nothing: it is not traced
  ValueFailure write_failed;
  pal::TraceSource::Format<> done;
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

// The client drivers, one after another.
class ClientDrivers {
 public:
  // Goes to the first, and then to the next. False behind the last and on a failure, which is
  // traced.
  [[nodiscard]] bool Next();
  [[nodiscard]] LONG error() const { return error_; }

  [[nodiscard]] HKEY key() const { return driver_.get(); }
  [[nodiscard]] const WCHAR* path() const { return path_.data(); }

 private:
  void Open(HKEY parent, const WCHAR* name, pal::UniqueRegistryKey& key);

  pal::UniqueRegistryKey drivers_;
  pal::UniqueRegistryKey driver_;
  std::array<WCHAR, kDriversPath.size() + 1 + MAX_PATH> path_{};  // of the last that was opened
  DWORD index_ = 0;
  LONG error_ = ERROR_SUCCESS;
};

void ClientDrivers::Open(HKEY parent, const WCHAR* name, pal::UniqueRegistryKey& key) {
  error_ = pal::OpenRegistryKey(parent, name, KEY_ALL_ACCESS, key);
  if (error_ == ERROR_SUCCESS) return;
  kTrace.Error("Error opening HKLM\\%ls. dwRet = %u", path_.data(), error_);
}

bool ClientDrivers::Next() {
  static_cast<void>(pal::Copy(path_, kDriversPath));
  if (!drivers_) Open(HKEY_LOCAL_MACHINE, kDriversPath.data(), drivers_);
  if (error_ != ERROR_SUCCESS) return false;
  std::array<WCHAR, MAX_PATH> name{};
  auto units = static_cast<DWORD>(name.size());
  const LONG error = RegEnumKeyExW(drivers_.get(), index_++, name.data(), &units, nullptr, nullptr,
                                   nullptr, nullptr);
  if (error == ERROR_NO_MORE_ITEMS) return false;
  if (error != ERROR_SUCCESS) {
    kTrace.Error("Error enumerating USB Mass Storage Client drivers. dwRet = %u", error);
    error_ = error;
    return false;
  }
  static_cast<void>(pal::Append(path_, TEXT("\\")) && pal::Append(path_, name.data()));
  Open(drivers_.get(), name.data(), driver_);
  return error_ == ERROR_SUCCESS;
}

// A text of a driver, as it is stored.
struct StoredText {
  std::array<BYTE, kMaxDllBytes> data;
  DWORD bytes;
};

// Nothing where the driver has no such value or one of another type; `error` is then
// ERROR_SUCCESS.
std::optional<StoredText> ReadText(HKEY driver, const WCHAR* name, LONG& error) {
  StoredText text{};
  text.bytes = kMaxDllBytes;
  DWORD type = REG_NONE;
  error = RegQueryValueExW(driver, name, nullptr, &type, text.data.data(), &text.bytes);
  const bool is_other = error == ERROR_FILE_NOT_FOUND ||
                        ((error == ERROR_SUCCESS || error == ERROR_MORE_DATA) && type != REG_SZ);
  if (is_other) error = ERROR_SUCCESS;
  if (is_other || error != ERROR_SUCCESS) return std::nullopt;
  return text;
}

// The text has both names for a moment, and so is never lost.
LONG MoveText(const ClientDrivers& drivers, const Direction& direction) {
  LONG error = ERROR_SUCCESS;
  const std::optional<StoredText> text = ReadText(drivers.key(), direction.from, error);
  if (error != ERROR_SUCCESS && direction.read_failed) {
    kTrace.Error(*direction.read_failed, drivers.path(), direction.from, error);
  }
  if (!text) return error;
  error = RegSetValueExW(drivers.key(), direction.to, 0, REG_SZ, text->data.data(), text->bytes);
  if (error != ERROR_SUCCESS) {
    kTrace.Error(direction.write_failed, drivers.path(), kVisibleName, error);
    return error;
  }
  error = RegDeleteValueW(drivers.key(), direction.from);
  if (error != ERROR_SUCCESS) {
    kTrace.Error("Error deleting HKLM\\%ls\\%ls. dwRet = %u", drivers.path(), direction.from,
                 error);
  }
  return error;
}

}  // namespace

HRESULT PALAPI PALStore_SetUsbHostMassStorageEnable(BOOL enable) {
  const Direction& direction = enable != FALSE ? kEnable : kDisable;
  ClientDrivers drivers;
  while (drivers.Next()) {
    const LONG error = MoveText(drivers, direction);
    if (error != ERROR_SUCCESS) return pal::HResultFromWin32(error);
  }
  if (drivers.error() != ERROR_SUCCESS) return pal::HResultFromWin32(drivers.error());
  kTrace.Info(direction.done);
  return S_OK;
}

HRESULT PALAPI PALStore_GetUsbHostMassStorageEnable(DWORD* enabled) {
  if (enabled == nullptr) return pal::kUsbBadInput;
  *enabled = 0;
  ClientDrivers drivers;
  while (drivers.Next()) {
    LONG error = ERROR_SUCCESS;
    const bool has_dll = ReadText(drivers.key(), kVisibleName, error).has_value();
    if (error != ERROR_SUCCESS) return pal::HResultFromWin32(error);
    if (!has_dll) continue;
    *enabled = 1;
    return S_OK;
  }
  if (drivers.error() != ERROR_SUCCESS) return pal::HResultFromWin32(drivers.error());
  kTrace.Info(kDisable.done);  // the line of the switch, also where nothing was switched
  return S_OK;
}
