// Whether the device takes USB disks: its client drivers have their DLL under one name or the
// other.
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

using ValueFailure = TraceSource::Format<const WCHAR*, const WCHAR*, LONG>;

// One of the two walks: in each driver the value `from` is renamed to `to`.
struct Direction {
  const WCHAR* from;
  const WCHAR* to;
  std::optional<ValueFailure> read_failed;  // nothing: the failure is not traced
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
  // Moves to the first driver, and then to the next. False behind the last one and on a failure,
  // which is traced.
  [[nodiscard]] bool Next();
  [[nodiscard]] LONG error() const { return error_; }

  [[nodiscard]] const UniqueRegistryKey& driver() const { return driver_; }

  // Returns `error`, which comes from an operation on a value of the driver. A failure is traced.
  [[nodiscard]] LONG Checked(LONG error, const std::optional<ValueFailure>& line,
                             const WCHAR* value_name) const;

 private:
  using Path = std::array<WCHAR, kDriversPath.size() + 1 + MAX_PATH>;

  // The path of the key that was opened last.
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
  static_cast<void>(fits);  // it always does
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

using DllText = std::array<BYTE, 520>;

// Nothing where the driver has no such value, or one of another type; `error` is then
// ERROR_SUCCESS.
std::optional<std::span<const BYTE>> ReadDll(const UniqueRegistryKey& driver, const WCHAR* name,
                                             DllText& text, LONG& error) {
  StoredValue stored;
  error = ReadBytes(driver, name, text, stored);
  const bool is_other =
      (error == ERROR_SUCCESS || error == ERROR_MORE_DATA) && stored.type != REG_SZ;
  if (error == ERROR_FILE_NOT_FOUND || is_other) {
    error = ERROR_SUCCESS;
    return std::nullopt;
  }
  if (error != ERROR_SUCCESS) return std::nullopt;
  return std::span(text).first(stored.bytes);
}

// The text is written under its new name before the old one is deleted: it is never lost.
LONG MoveText(const ClientDrivers& drivers, const Direction& direction) {
  DllText text;
  LONG error = ERROR_SUCCESS;
  const auto dll = ReadDll(drivers.driver(), direction.from, text, error);
  if (!dll) return drivers.Checked(error, direction.read_failed, direction.from);
  error = drivers.Checked(WriteBytes(drivers.driver(), direction.to, *dll, REG_SZ),
                          direction.write_failed, kVisibleName);
  if (error != ERROR_SUCCESS) return error;
  return drivers.Checked(RegDeleteValueW(drivers.driver().get(), direction.from), kDeleteFailed,
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
  if (enabled == nullptr) return E_FAIL;
  *enabled = 0;
  pal::ClientDrivers drivers;
  while (drivers.Next()) {
    LONG error = ERROR_SUCCESS;
    pal::DllText text;
    *enabled = pal::ReadDll(drivers.driver(), pal::kVisibleName, text, error) ? 1 : 0;
    if (error != ERROR_SUCCESS) return pal::HResultFromWin32(error);
    if (*enabled != 0) return S_OK;
  }
  if (drivers.error() != ERROR_SUCCESS) return pal::HResultFromWin32(drivers.error());
  pal::kTrace.Info(pal::kDisable.done);  // the switch's line, although nothing was switched
  return S_OK;
}
