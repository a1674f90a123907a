// What the device says about itself: one source for each text, beside PalGetModel.
//
// `length`: in, the size of `buffer` in bytes; out, the length of the text with its terminator,
// where a source says nothing else. A failed source changes neither. The results of a source,
// where it says nothing else:
//
// S_OK                           done
// PAL_SYSINFO_E_INVALID_INPUT    a null argument; traced
// PAL_SYSINFO_E_SOURCE_FAILED    the device has no OEM information
// PAL_SYSINFO_E_SOURCE_TOO_LONG  the text does not fit
//
// The last two are older than the result codes of the families.
#ifndef SYSINFO_IDENTITY_IDENTITY_SOURCES_H_
#define SYSINFO_IDENTITY_IDENTITY_SOURCES_H_

#include "frame/trace.h"
#include "platform/wince.h"

namespace pal {

inline constexpr TraceSource kIdentityTrace{Facility::kDeviceInformation};

using IdentitySource = HRESULT (*)(char* buffer, DWORD* length);

// The model name that is shown to users, parameter 0x00D6. E_FAIL where the parameter cannot be
// read or has no bytes, or the text does not fit; traced.
HRESULT PalGetDispayModel(char* buffer, DWORD* length);

// The firmware's version. `length` receives one more than the text and its terminator need, also
// where the text does not fit: callers need a spare byte. E_FAIL for a null argument, where the
// kernel control fails, and where the text does not fit; traced.
HRESULT PalGetFirmwareVer(char* buffer, DWORD* length);

// The Ethernet address of parameter 0x0001, each byte in as few hexadecimal digits as it needs.
// Always S_OK: where the parameter cannot be read, nothing is written and `length` stays.
HRESULT PalGetEtherMACAddress(char* buffer, DWORD* length);

// "PocketPC" as the platform spells it, or "WINCE". PAL_SYSINFO_E_SOURCE_FAILED where the version
// cannot be read, or the platform is not Windows CE.
HRESULT PalGetOS(char* buffer, DWORD* length);

// The operating system's major, minor and build number: "5.2.19202". PAL_SYSINFO_E_SOURCE_FAILED as
// PalGetOS, and where the text does not fit.
HRESULT PalGetOSVer(char* buffer, DWORD* length);

// The hardware configuration, such as "CG0". `length` does not count the terminator.
HRESULT PalGetHwConfig(char* buffer, DWORD* length);

// The serial number.
HRESULT PalGetSerialNum(char* buffer, DWORD* length);

// A factory date, "07/25/2014", of parameter `id`: 0x0003 or 0x0004. Always S_OK: where the id is
// another one or the parameter cannot be read, nothing is written and `length` stays.
HRESULT PalGetDate(WORD id, char* buffer, DWORD* length);

// The beginning of the hardware configuration with the serial number behind it, or, where that has
// more than 11 characters, with the Ethernet address behind it. Also the failures of these sources;
// E_FAIL where the text does not fit. A null argument is not traced.
HRESULT PalGetQualifiedSerialNum(char* buffer, DWORD* length);

}  // namespace pal

#endif  // SYSINFO_IDENTITY_IDENTITY_SOURCES_H_
