#include "keypad/shift_plane.h"

#include <algorithm>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/text.h"
#include "frame/trace.h"

namespace pal {
namespace {

using RecordFormat = TraceSource::Format<DWORD, BYTE, BYTE, BYTE, BYTE, BYTE, BYTE>;

constexpr RecordFormat kFound("Key(%d):0x%x, 0x%x, 0x%x, 0x%x, 0x%x, 0x%x found\r\n");
constexpr RecordFormat kCopied("Key (%d):0x%x, 0x%x, 0x%x, 0x%x, 0x%x, 0x%x copied\r\n");
constexpr RecordFormat kAdded("Key (%d):0x%x, 0x%x, 0x%x, 0x%x, 0x%x, 0x%x added\r\n");

void TraceRecord(RecordFormat format, DWORD offset, std::span<const BYTE> record) {
  kKeypadTrace.Info(format, offset, record[0], record[1], record[2], record[3], record[4],
                    record[5]);
}

// Overwrites every record of the same kind and scan code. False where there is none.
bool Replace(std::span<BYTE> plane, const KeyRecord& record) {
  bool replaced = false;
  ForEachKeyRecord(plane, [&](DWORD offset, std::span<BYTE> found) {
    if (!IsRecordOf(found, record[kKeyKind], record[kKeyScanCode])) return;
    TraceRecord(kFound, offset, found);
    std::copy(record.begin(), record.end(), found.begin());
    TraceRecord(kCopied, offset, found);
    replaced = true;
  });
  return replaced;
}

// Puts the record behind the last whole one. Bytes of a record that was cut short are overwritten.
void Append(std::span<BYTE> plane, DWORD& bytes, const KeyRecord& record) {
  if (bytes + kKeyRecordBytes >= kMaxPlaneBytes) {
    kKeypadTrace.Error("2 Source Buffer too short dwLen = %d dwBufLen=%d\r\n", bytes,
                       kKeyRecordBytes);
    return;
  }
  const DWORD offset = bytes - bytes % kKeyRecordBytes;
  std::copy(record.begin(), record.end(), plane.begin() + offset);
  bytes = offset + kKeyRecordBytes;
  TraceRecord(kAdded, offset, record);
}

// Tries the write of a plane whose key could not be opened for the read. Where the key opens now,
// the result is the read's all the same: a plane that was not read must not be written over.
HRESULT TryToOpenForWrite(const WCHAR* layout, HRESULT read_result) {
  UniqueRegistryKey key;
  const LONG error = OpenRegistryKey(HKEY_LOCAL_MACHINE, layout, KEY_SET_VALUE, key);
  return error == ERROR_SUCCESS ? read_result : HResultFromWin32(error);
}

HRESULT SetRecord(const WCHAR* layout, const WCHAR* plane_name, const KeyRecord& record,
                  HRESULT full_result) {
  BYTE plane[kMaxPlaneBytes];
  const PlaneReading reading = ReadShiftPlane(layout, plane_name, plane);
  if (Succeeded(reading.opened) && Failed(reading.read)) return reading.read;
  DWORD bytes = reading.bytes;
  const bool is_full = bytes == kMaxPlaneBytes;
  if (is_full || !Replace(std::span(plane).first(bytes), record)) Append(plane, bytes, record);
  if (is_full) return full_result;
  if (Failed(reading.opened)) return TryToOpenForWrite(layout, reading.opened);
  return PALRegSetBinary(HKEY_LOCAL_MACHINE, layout, plane_name, plane, bytes);
}

// "Event5" gives 5.
BYTE EventNumber(const WCHAR* event_value_name) {
  return static_cast<BYTE>(WideText(event_value_name).back() - TEXT('0'));
}

}  // namespace

PlaneReading ReadShiftPlane(const WCHAR* layout, const WCHAR* plane_name, std::span<BYTE> plane) {
  std::fill(plane.begin(), plane.end(), BYTE{0});
  UniqueRegistryKey key;
  const LONG open_error = OpenRegistryKey(HKEY_LOCAL_MACHINE, layout, KEY_QUERY_VALUE, key);
  const HRESULT opened = HResultFromWin32(open_error);
  if (open_error != ERROR_SUCCESS) return {0, opened, opened};
  StoredValue stored;
  const LONG error = ReadBytes(key, plane_name, plane, stored);
  if (error == ERROR_SUCCESS) return {stored.bytes, opened, S_OK};
  // The platform does not say what a failed query leaves in its buffer.
  std::fill(plane.begin(), plane.end(), BYTE{0});
  if (error == ERROR_MORE_DATA) return {static_cast<DWORD>(plane.size()), opened, S_OK};
  return {0, opened, error == ERROR_FILE_NOT_FOUND ? S_OK : HResultFromWin32(error)};
}

HRESULT GetKeyValues(const WCHAR* layout, const WCHAR* plane_name, const ButtonRecord& button,
                     KeyRecord& record) {
  kKeypadTrace.Info("GetKeyValues %ls: Enter %ls ID:%d\r\n", layout, plane_name, button.id);
  BYTE plane[kMaxPlaneBytes];
  const PlaneReading reading = ReadShiftPlane(layout, plane_name, plane);
  ForEachKeyRecord(std::span(plane).first(reading.bytes), [&](DWORD offset, std::span<BYTE> found) {
    if (!IsRecordOf(found, kMapsScanCode, button.scan_code)) return;
    TraceRecord(kFound, offset, found);
    std::copy(found.begin(), found.end(), record.begin());
    TraceRecord(kCopied, offset, found);
  });
  kKeypadTrace.Info("GetKeyValues Complete hr=0x%x\r\n", reading.opened);
  return reading.opened;
}

HRESULT SetKeyValues(const WCHAR* layout, const WCHAR* plane_name, const ButtonRecord& button,
                     const KeyRecord& record, HRESULT full_result) {
  kKeypadTrace.Info("SetKeyValues %ls: Enter %ls ID:%d\r\n", layout, plane_name, button.id);
  const HRESULT result = SetRecord(layout, plane_name, record, full_result);
  kKeypadTrace.Info("SetKeyValues Complete hr=0x%x\r\n", result);
  return result;
}

void ModifyKeyDataForEventTrigger(const WCHAR* event_value_name, KeyRecord& record) {
  const BYTE event = EventNumber(event_value_name);
  kKeypadTrace.Info("ModifyKeyDataForEventTrigger: Enter Event: %ls index: %u\r\n",
                    event_value_name, event);
  record[kKeyOutputClass] = kSignalsEvent;
  record[kKeyOutputClass + 1] = kSignalsEvent;
  record[kKeyEvent] = event;
  kKeypadTrace.Info(
      "ModifyKeyDataForEventTrigger: Complete Key (%d):0x%x, 0x%x, 0x%x, 0x%x, 0x%x, 0x%x "
      "modified\r\n",
      record[kKeyScanCode], record[0], record[1], record[2], record[3], record[4], record[5]);
}

bool SignalsEvent(const WCHAR* event_value_name, const KeyRecord& record) {
  return record[kKeyOutputClass] == kSignalsEvent && record[kKeyOutputClass + 1] == kSignalsEvent &&
         record[kKeyEvent] == EventNumber(event_value_name);
}

}  // namespace pal
