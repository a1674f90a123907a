// What the device says about itself: one source for each text, beside PalGetModel.
//
// `length`: in, the size of `buffer` in bytes; out, the length of the text with its terminator,
// where a source says nothing else. A failed source changes neither. Both may be null: this is a
// failure that each source names.
#ifndef SYSINFO_IDENTITY_IDENTITY_SOURCES_H_
#define SYSINFO_IDENTITY_IDENTITY_SOURCES_H_

#include "frame/trace.h"
#include "platform/wince.h"

namespace pal {

inline constexpr TraceSource kIdentityTrace{Facility::kDeviceInformation};

// Two results of the sources that are older than the result codes of the families.
inline constexpr HRESULT kSourceFailed = PAL_SYSINFO_E_SOURCE_FAILED;
inline constexpr HRESULT kSourceTooLong = PAL_SYSINFO_E_SOURCE_TOO_LONG;

using IdentitySource = HRESULT (*)(char* buffer, DWORD* length);

// The model name that is shown to users, parameter 0x00D6.
//
// S_OK        done
// PAL_SYSINFO_E_INVALID_INPUT  a null argument; traced
// E_FAIL      the parameter cannot be read or has no bytes; the text does not fit; traced
HRESULT PalGetDispayModel(char* buffer, DWORD* length);

// The firmware's version. `length` receives one more than the text and its terminator need, also
// where the text does not fit: callers need a spare byte.
//
// S_OK    done
// E_FAIL  a null argument; the kernel control fails; the text does not fit. Traced.
HRESULT PalGetFirmwareVer(char* buffer, DWORD* length);

// The Ethernet address of parameter 0x0001, each byte in as few hexadecimal digits as it needs.
//
// S_OK  always. Where the parameter cannot be read, nothing is written and `length` stays.
HRESULT PalGetEtherMACAddress(char* buffer, DWORD* length);

// "PocketPC" as the platform spells it, or "WINCE".
//
// S_OK        done
// PAL_SYSINFO_E_INVALID_INPUT  a null argument; traced
// kSourceFailed  the version cannot be read, or the platform is not Windows CE
// kSourceTooLong  the text does not fit
HRESULT PalGetOS(char* buffer, DWORD* length);

// The operating system's major, minor and build number: "5.2.19202".
//
// S_OK        done
// PAL_SYSINFO_E_INVALID_INPUT  a null argument; traced
// kSourceFailed  the version cannot be read, the platform is not Windows CE, or the text does not
// fit
HRESULT PalGetOSVer(char* buffer, DWORD* length);

// The hardware configuration, such as "CG0". `length` does not count the terminator.
//
// S_OK        done
// PAL_SYSINFO_E_INVALID_INPUT  a null argument; traced
// kSourceFailed  the device has no OEM information
// kSourceTooLong  the text does not fit
HRESULT PalGetHwConfig(char* buffer, DWORD* length);

// The serial number.
//
// S_OK        done
// PAL_SYSINFO_E_INVALID_INPUT  a null argument; traced
// kSourceFailed  the device has no OEM information
// kSourceTooLong  the text does not fit
HRESULT PalGetSerialNum(char* buffer, DWORD* length);

// A factory date, "07/25/2014", of parameter `id`: 0x0003 or 0x0004.
//
// S_OK  always. Where the id is another one or the parameter cannot be read, nothing is written and
//       `length` stays.
HRESULT PalGetDate(WORD id, char* buffer, DWORD* length);

// The beginning of the hardware configuration with the serial number behind it, or, where that has
// more than 11 characters, with the Ethernet address behind it.
//
// S_OK        done
// PAL_SYSINFO_E_INVALID_INPUT  a null argument
// E_FAIL      the text does not fit
// others      of PalGetHwConfig and PalGetSerialNum
HRESULT PalGetQualifiedSerialNum(char* buffer, DWORD* length);

}  // namespace pal

#endif  // SYSINFO_IDENTITY_IDENTITY_SOURCES_H_
