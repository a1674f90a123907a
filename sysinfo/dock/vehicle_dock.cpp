// The vehicle dock, found by the part number in its one-wire memory.
#include <algorithm>
#include <array>
#include <cstdarg>
#include <span>
#include <type_traits>

#include "frame/trace.h"
#include "frame/unique_handle.h"
#include "include/palonewire.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kOneWire};

// The record that is input and output of every call to the driver.
struct OneWireRecord {
  DWORD index;  // in: of the device; out: the number of devices
  std::array<BYTE, 8> id;
  DWORD start_address;
  DWORD bytes;  // in: to read; out: the memory's size
  std::array<BYTE, 256> memory;
  DWORD status;  // 0 is success
};
static_assert(sizeof(OneWireRecord) == 280);
static_assert(offsetof(OneWireRecord, id) == 4 && offsetof(OneWireRecord, bytes) == 16);
static_assert(offsetof(OneWireRecord, memory) == 20 && offsetof(OneWireRecord, status) == 276);

using NumberFormat = TraceSource::Format<DWORD>;

// One kind of call to the driver, and the lines of its failures.
struct Request {
  DWORD code;
  const char* call_failed;  // null: the driver's refusal is not traced
  NumberFormat status_failed;
};
constexpr Request kSearch{0x80100004, "  search IOCTL failed", "  search failed %.8X"};
constexpr Request kGetDeviceCount{0x80100008, "  get num devs IOCTL failed",
                                  "  get num devs failed %.8X"};
constexpr Request kGetDeviceId{0x8010000C, "  get dev ID IOCTL failed", "  Get dev ID failed %.8X"};
constexpr Request kGetMemorySize{0x80100014, nullptr, "  Memsize failed %.8X"};
constexpr Request kReadMemory{0x80100018, "  read mem IOCTL failed", "  read mem failed %.8X"};

// No bus has more devices. A wrong count of the driver must not keep the caller for ever.
constexpr DWORD kMaxDevices = 256;
constexpr BYTE kIdFill = 0xCC;
constexpr size_t kPartNumberOffset = 1;

using Message = std::array<char, 64>;
using PartNumber = std::array<char, 7>;

// Cuts a text that does not fit.
void FormatChecked(std::span<char> text, const char* format, ...) {
  text.front() = '\0';
  va_list arguments;
  va_start(arguments, format);
  _vsnprintf(text.data(), text.size() - 1, format, arguments);
  va_end(arguments);
  text.back() = '\0';
}

template <typename... Arguments>
void Format(std::span<char> text, TraceSource::Format<Arguments...> format,
            Arguments... arguments) {
  FormatChecked(text, format.text(), VariadicTraceArgument(arguments)...);
}

template <typename... Arguments>
void TraceProgress(TraceSource::Format<Arguments...> format, Arguments... arguments) {
  Message message{};
  Format(message, format, arguments...);
  kTrace.Info("PALOneWire::FindVehicleDock(): %s", message.data());
}

void TraceFailure(const char* message) {
  kTrace.Error("PALOneWire::FindVehicleDock(): %s", message);
}

UniqueFile OpenDriver() {
  UniqueFile driver(CreateFileW(TEXT("WIR1:"), GENERIC_READ | GENERIC_WRITE,
                                FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                nullptr));
  if (!driver) {
    kTrace.Error("PALOneWire::Open - Error opening OneWire driver, %d", GetLastError());
  }
  return driver;
}

// True where the call and the driver's status are good; `returned` is the driver's byte count.
bool Call(HANDLE driver, const Request& request, OneWireRecord& record, DWORD& returned) {
  returned = 0;
  if (DeviceIoControl(driver, request.code, &record, sizeof(record), &record, sizeof(record),
                      &returned, nullptr) == FALSE) {
    if (request.call_failed != nullptr) TraceFailure(request.call_failed);
    return false;
  }
  if (record.status == 0) return true;
  Message message{};
  Format(message, request.status_failed, record.status);
  TraceFailure(message.data());
  return false;
}
bool Call(HANDLE driver, const Request& request, OneWireRecord& record) {
  DWORD returned = 0;
  return Call(driver, request, record, returned);
}

DWORD FindDevices(HANDLE driver) {
  OneWireRecord search{};
  OneWireRecord count{};
  if (!Call(driver, kSearch, search) || !Call(driver, kGetDeviceCount, count)) return 0;
  kTrace.Info("PALOneWire::FindVehicleDock(): Num devices found = %d", count.index);
  return std::min(count.index, kMaxDevices);
}

bool TraceId(HANDLE driver, DWORD index) {
  OneWireRecord record{};
  record.index = index;
  record.id.fill(kIdFill);
  if (!Call(driver, kGetDeviceId, record)) return false;
  const auto& id = record.id;
  TraceProgress("Dev%.2X ID: %.2X %.2X %.2X %.2X %.2X %.2X %.2X %.2X", index, id[0], id[1], id[2],
                id[3], id[4], id[5], id[6], id[7]);
  return true;
}

bool TraceMemorySize(HANDLE driver, DWORD index) {
  OneWireRecord record{};
  record.index = index;
  if (!Call(driver, kGetMemorySize, record)) return false;
  TraceProgress("  Mem size = %d", record.bytes);
  return true;
}

bool ReadPartNumber(HANDLE driver, DWORD index, PartNumber& part_number) {
  OneWireRecord record{};
  record.index = index;
  record.bytes = static_cast<DWORD>(record.memory.size());
  DWORD returned = 0;
  if (!Call(driver, kReadMemory, record, returned)) return false;
  TraceProgress("OneWireReadMem Record Type: %.2x, Bytes Read - %d", record.memory[0], returned);
  const BYTE* const part = &record.memory[kPartNumberOffset];
  Format(part_number, "%c%c%c%c%c%c", part[0], part[1], part[2], part[3], part[4], part[5]);
  kTrace.Info("PALOneWire::FindVehicleDock() Part Number: %s", part_number.data());
  return true;
}

// The memory's size is only traced: it does not limit the read.
bool IsVehicleDock(HANDLE driver, DWORD index) {
  PartNumber part_number{};
  return TraceId(driver, index) && TraceMemorySize(driver, index) &&
         ReadPartNumber(driver, index, part_number) &&
         _strnicmp(part_number.data(), "871231", part_number.size()) == 0;
}

bool FindVehicleDock(HANDLE driver) {
  kTrace.Info("Entering PALOneWire::FindVehicleDock()");
  const DWORD devices = FindDevices(driver);
  DWORD index = 0;
  while (index < devices && !IsVehicleDock(driver, index)) ++index;
  kTrace.Info("Exiting PALOneWire::FindVehicleDock()");
  return index < devices;
}

}  // namespace
}  // namespace pal

DWORD PALAPI PALOneWire_IsVehicleDockAttached() {
  const pal::UniqueFile driver = pal::OpenDriver();
  return driver && pal::FindVehicleDock(driver.get()) ? PAL_VEHICLE_DOCK_ATTACHED
                                                      : PAL_VEHICLE_DOCK_NOT_ATTACHED;
}
