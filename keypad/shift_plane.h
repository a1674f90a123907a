// The shift planes of a layout: one record of six bytes for each key.
#ifndef KEYPAD_SHIFT_PLANE_H_
#define KEYPAD_SHIFT_PLANE_H_

#include <array>
#include <span>

#include "keypad/button_table.h"
#include "platform/wince.h"

namespace pal {

inline constexpr DWORD kKeyRecordBytes = 6;
using KeyRecord = std::array<BYTE, kKeyRecordBytes>;

// The bytes of a record. The byte between the scan code and the output is the driver's own.
inline constexpr size_t kKeyKind = 0;
inline constexpr size_t kKeyScanCode = 1;
inline constexpr size_t kKeyOutputClass = 3;  // in two bytes
inline constexpr size_t kKeyEvent = 5;

// The kind that maps a scan code to its output. Buttons have records of this kind only.
inline constexpr BYTE kMapsScanCode = 7;
// In both bytes of the output: the key signals an event.
inline constexpr BYTE kSignalsEvent = 2;

// A plane may be as large as this; at this size it is full.
inline constexpr DWORD kMaxPlaneBytes = 4096;

constexpr bool IsRecordOf(std::span<const BYTE> record, BYTE kind, DWORD scan_code) {
  return record[kKeyKind] == kind && record[kKeyScanCode] == scan_code;
}

// Visits the whole records of a plane, with their offsets, until `visit` gives true. False where it
// never does.
template <typename Visit>
constexpr bool AnyKeyRecord(std::span<BYTE> plane, Visit visit) {
  for (size_t offset = 0; plane.size() - offset >= kKeyRecordBytes; offset += kKeyRecordBytes) {
    if (visit(static_cast<DWORD>(offset), plane.subspan(offset, kKeyRecordBytes))) return true;
  }
  return false;
}
template <typename Visit>
constexpr void ForEachKeyRecord(std::span<BYTE> plane, Visit visit) {
  AnyKeyRecord(plane, [&](DWORD offset, std::span<BYTE> record) {
    visit(offset, record);
    return false;
  });
}

// The outcome of reading a plane.
struct PlaneReading {
  // 0 where the layout has no such plane or it cannot be read. The whole room where the plane is
  // larger than that, with nothing but zeros read.
  DWORD bytes;
  // S_OK        the layout's key was opened
  // PAL_E_WIN32(error)  the error of opening it
  HRESULT opened;
  // S_OK        the plane was read, or there is none, or it is larger than the room
  // PAL_E_WIN32(error)  the error of opening the key, or of reading a plane that exists
  HRESULT read;
};

// Reads a plane of a layout, of whatever registry type.
[[nodiscard]] PlaneReading ReadShiftPlane(const WCHAR* layout, const WCHAR* plane_name,
                                          std::span<BYTE> plane);

// Finds a button's record in a plane; of several the last. Without one `record` stays as it was,
// also where the plane is missing or cannot be read.
//
// S_OK        the layout's key was opened
// PAL_E_WIN32(error)  the error of opening it
[[nodiscard]] HRESULT GetKeyValues(const WCHAR* layout, const WCHAR* plane_name,
                                   const ButtonRecord& button, KeyRecord& record);

// Puts a button's record in place of every one with the same kind and scan code, or behind the last
// one. A plane that has no room for it is written back as it was, and one of kMaxPlaneBytes and
// more is not written at all; an error line tells of both.
//
// S_OK                the result of PALRegSetBinary, which does not tell of a write that failed
// full_result         the plane has kMaxPlaneBytes or more
// PAL_E_WIN32(error)  the plane exists and cannot be read, or the key cannot be opened; nothing was
//                     written. Without the key the record is traced as added all the same.
[[nodiscard]] HRESULT SetKeyValues(const WCHAR* layout, const WCHAR* plane_name,
                                   const ButtonRecord& button, const KeyRecord& record,
                                   HRESULT full_result = S_OK);

// Makes a record signal the event of a button ("Event5" gives event 5).
void ModifyKeyDataForEventTrigger(const WCHAR* event_value_name, KeyRecord& record);

// True where the record signals that event already.
[[nodiscard]] bool SignalsEvent(const WCHAR* event_value_name, const KeyRecord& record);

}  // namespace pal

#endif  // KEYPAD_SHIFT_PLANE_H_
