#include <cstdlib>

#include "bench/hand_written/registry.h"
#include "include/palmfgopt.h"
#include "include/palsysinfo.h"

namespace {

constexpr HRESULT kTooShort = static_cast<HRESULT>(0x840F0001);
constexpr HRESULT kInvalidInput = static_cast<HRESULT>(0x840F0002);
constexpr HRESULT kFailed = -1;

// Each source writes at most 256 bytes and says how many there are, with the terminator.
using Source = HRESULT (*)(char* text, DWORD* length);

BOOL ReadParameter(WORD id, DWORD request_bytes, void* answer, DWORD bytes, DWORD* returned) {
  DWORD request = id;
  *returned = 0;
  const BOOL done = KernelIoControl(0x010122C4, &request, request_bytes, answer, bytes, returned);
  if (*returned > bytes) *returned = bytes;
  return done;
}

// Ends a text of so many bytes, which may hold a terminator.
DWORD End(char* text, DWORD bytes) {
  DWORD length = 0;
  while (length < bytes && text[length] != 0) ++length;
  text[length] = 0;
  return length + 1;
}

HRESULT Model(char* text, DWORD* length) {
  DWORD bytes = 0;
  memset(text, 0xEE, 128);
  if (ReadParameter(0xD5, 2, text, 128, &bytes) == FALSE || bytes == 0) return E_FAIL;
  while (bytes > 0 && static_cast<BYTE>(text[bytes - 1]) == 0xEE) --bytes;
  *length = End(text, bytes);
  return S_OK;
}

HRESULT DisplayModel(char* text, DWORD* length) {
  DWORD bytes = 0;
  if (ReadParameter(0xD6, 2, text, 128, &bytes) == FALSE || bytes == 0) return E_FAIL;
  *length = End(text, bytes);
  return S_OK;
}

// One byte more than the text needs.
HRESULT Firmware(char* text, DWORD* length) {
  char information[128];
  DWORD bytes = 0;
  memset(information, 0, sizeof(information));
  if (KernelIoControl(0x01012000, nullptr, 0, information, sizeof(information), &bytes) == FALSE) {
    return E_FAIL;
  }
  memcpy(text, information + 63, 65);
  *length = End(text, 65) + 1;
  text[*length - 1] = 0;
  return S_OK;
}

HRESULT Ethernet(char* text, DWORD* length) {
  BYTE address[128];
  DWORD bytes = 0;
  if (ReadParameter(1, 2, address, sizeof(address), &bytes) == FALSE || bytes == 0) return S_OK;
  static const char digits[] = "0123456789abcdef";
  char* end = text;
  for (int at = 0; at < 6; ++at) {
    if (address[at] > 15) *end++ = digits[address[at] >> 4];
    *end++ = digits[address[at] & 15];
  }
  *end++ = 0;
  *length = static_cast<DWORD>(end - text);
  return S_OK;
}

BOOL ReadVersion(OSVERSIONINFOW* version) {
  memset(version, 0, sizeof(*version));
  version->dwOSVersionInfoSize = sizeof(*version);
  return GetVersionExW(version) != FALSE && version->dwPlatformId == 3;
}

HRESULT OperatingSystem(char* text, DWORD* length) {
  OSVERSIONINFOW version;
  if (ReadVersion(&version) == FALSE) return kFailed;
  WCHAR type[260];
  const BOOL done = SystemParametersInfoW(SPI_GETPLATFORMTYPE, sizeof(type), type, 0);
  if (done != FALSE && _wcsicmp(type, TEXT("PocketPC")) == 0) {
    *length = static_cast<DWORD>(wcstombs(text, type, 256)) + 1;
  } else {
    memcpy(text, "WINCE", 6);
    *length = 6;
  }
  return S_OK;
}

char* PutNumber(char* to, DWORD number) {
  char digits[10];
  int count = 0;
  do {
    digits[count++] = static_cast<char>('0' + number % 10);
    number /= 10;
  } while (number != 0);
  while (count > 0) *to++ = digits[--count];
  return to;
}

HRESULT OperatingSystemVersion(char* text, DWORD* length) {
  OSVERSIONINFOW version;
  if (ReadVersion(&version) == FALSE) return kFailed;
  char* end = PutNumber(text, version.dwMajorVersion);
  *end++ = '.';
  end = PutNumber(end, version.dwMinorVersion);
  *end++ = '.';
  end = PutNumber(end, version.dwBuildNumber);
  *end++ = 0;
  *length = static_cast<DWORD>(end - text);
  return S_OK;
}

BOOL ReadOem(WCHAR* oem) {
  return SystemParametersInfoW(SPI_GETOEMINFO, 512, oem, 0) != FALSE && oem[0] != 0;
}

constinit char configuration[32] = {};
constinit DWORD configuration_length = 0;
constinit char serial[128] = {};
constinit DWORD serial_length = 0;

DWORD ReadIdentity(const WCHAR* name, char* text) {
  WCHAR stored[65];
  DWORD bytes = 128;
  if (ReadValue(HKEY_LOCAL_MACHINE, TEXT("Software\\Dravonel\\DVLHWID"), name, stored, &bytes) <
      0) {
    return 0;
  }
  stored[bytes / sizeof(WCHAR)] = 0;
  return static_cast<DWORD>(wcstombs(text, stored, 65)) + 1;
}

// Read once for the process.
HRESULT Configuration(char* text, DWORD* length) {
  WCHAR oem[256];
  if (ReadOem(oem) == FALSE) return kFailed;
  if (configuration_length == 0) {
    const WORD parameter = _wcsicmp(oem, TEXT("Dravonel Rx")) == 0 ? 0x27 : 0x0A;
    DWORD bytes = 0;
    char found[65];
    DWORD found_length = 0;
    if (ReadParameter(parameter, 2, found, 31, &bytes) != FALSE) found_length = End(found, bytes);
    if (found_length <= 1) found_length = ReadIdentity(TEXT("HardwareCfgString"), found);
    if (found_length <= 1) {
      memcpy(found, "CG0", 4);
      found_length = 4;
    }
    memcpy(configuration, found, found_length);
    configuration_length = found_length;
  }
  memcpy(text, configuration, configuration_length);
  *length = configuration_length;
  return S_OK;
}

HRESULT Serial(char* text, DWORD* length) {
  WCHAR oem[256];
  if (ReadOem(oem) == FALSE) return kFailed;
  if (serial_length == 0) {
    char found[257];
    DWORD bytes = 0;
    DWORD found_length = 0;
    if (ReadParameter(0x48, 2, found, 256, &bytes) != FALSE && bytes != 0) {
      found_length = End(found, bytes);
    } else {
      found_length = ReadIdentity(TEXT("SerialNumber"), found);
    }
    if (found_length == 0 || found_length > sizeof(serial)) return kFailed;
    memcpy(serial, found, found_length);
    serial_length = found_length;
  }
  memcpy(text, serial, serial_length);
  *length = serial_length;
  return S_OK;
}

HRESULT QualifiedSerial(char* text, DWORD* length) {
  char own[256];
  DWORD begin = 0;
  DWORD rest = 0;
  HRESULT result = Configuration(own, &begin);
  if (result < 0) return result;
  begin = begin - 1 < 4 ? begin - 1 : 4;
  memcpy(text, own, begin);
  result = Serial(own, &rest);
  if (result < 0) return result;
  if (rest > 12) {
    own[0] = 0;
    rest = 1;
    result = Ethernet(own, &rest);
    if (result < 0) return result;
  }
  memcpy(text + begin, own, rest);
  *length = begin + rest;
  return S_OK;
}

char* PutPacked(char* to, BYTE byte) {
  *to++ = static_cast<char>('0' + (byte >> 4));
  *to++ = static_cast<char>('0' + (byte & 15));
  return to;
}

HRESULT Date(WORD parameter, char* text, DWORD* length) {
  BYTE date[4];
  DWORD bytes = 0;
  if (ReadParameter(parameter, 4, date, sizeof(date), &bytes) == FALSE || bytes == 0) return S_OK;
  char* end = PutPacked(text, date[2]);
  *end++ = '/';
  end = PutPacked(end, date[3]);
  *end++ = '/';
  end = PutPacked(PutPacked(end, date[0]), date[1]);
  *end++ = 0;
  *length = static_cast<DWORD>(end - text);
  return S_OK;
}
HRESULT FirstDate(char* text, DWORD* length) {
  return Date(3, text, length);
}
HRESULT SecondDate(char* text, DWORD* length) {
  return Date(4, text, length);
}

HRESULT Give(Source source, char* buffer, DWORD* length) {
  if (length == nullptr) return kInvalidInput;
  char text[256];
  DWORD needed = 1;
  text[0] = 0;
  const HRESULT result = source(text, &needed);
  if (result < 0) return result;
  const DWORD room = *length;
  *length = needed;
  if (buffer == nullptr) return result;
  if (room < needed) return kTooShort;
  memcpy(buffer, text, needed);
  return result;
}

HRESULT Give(Source source, WCHAR* buffer, DWORD* length) {
  if (length == nullptr) return kInvalidInput;
  char text[256];
  DWORD needed = 1;
  text[0] = 0;
  const HRESULT result = source(text, &needed);
  if (result < 0) return result;
  const DWORD room = *length;
  *length = needed * static_cast<DWORD>(sizeof(WCHAR));
  if (buffer == nullptr) return result;
  if (room < *length) return kTooShort;
  *length = static_cast<DWORD>((mbstowcs(buffer, text, needed) + 1) * sizeof(WCHAR));
  return result;
}

template <typename Unit>
HRESULT GiveFixed(Source source, Unit* buffer) {
  DWORD length = PAL_IDENTITY_FIXED_LENGTH;
  return Give(source, buffer, &length);
}

template <typename Unit>
HRESULT GiveOperatingSystem(Unit* name, Unit* version) {
  const HRESULT result = GiveFixed(&OperatingSystem, name);
  return result < 0 ? result : GiveFixed(&OperatingSystemVersion, version);
}

template <typename Unit>
HRESULT GiveDetail(DWORD detail, Unit* buffer, DWORD* length) {
  static const Source sources[PAL_DEVICE_DETAIL_COUNT] = {
      &Configuration,          &Serial,    &Model,
      &DisplayModel,           &Firmware,  &OperatingSystem,
      &OperatingSystemVersion, &FirstDate, &SecondDate,
      &QualifiedSerial,        &Ethernet};
  if (detail >= PAL_DEVICE_DETAIL_COUNT) return kInvalidInput;
  return sources[detail] == nullptr ? E_NOTIMPL : Give(sources[detail], buffer, length);
}

}  // namespace

HRESULT PALAPI PALSysinfo_GetModelExA(char* buffer, DWORD* length) {
  return Give(&Model, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetModelExW(WCHAR* buffer, DWORD* length) {
  return Give(&Model, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetFirmwareVerExA(char* buffer, DWORD* length) {
  return Give(&Firmware, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetFirmwareVerExW(WCHAR* buffer, DWORD* length) {
  return Give(&Firmware, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetSerialNumberExA(char* buffer, DWORD* length) {
  return Give(&Serial, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetSerialNumberExW(WCHAR* buffer, DWORD* length) {
  return Give(&Serial, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetHwConfigExA(char* buffer, DWORD* length) {
  return Give(&Configuration, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetHwConfigExW(WCHAR* buffer, DWORD* length) {
  return Give(&Configuration, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetOSExA(char* buffer, DWORD* length) {
  return Give(&OperatingSystem, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetOSExW(WCHAR* buffer, DWORD* length) {
  return Give(&OperatingSystem, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetOSVerExA(char* buffer, DWORD* length) {
  return Give(&OperatingSystemVersion, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetOSVerExW(WCHAR* buffer, DWORD* length) {
  return Give(&OperatingSystemVersion, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetModel(WCHAR* buffer) {
  return GiveFixed(&Model, buffer);
}
HRESULT PALAPI PALSysinfo_GetModelA(char* buffer) {
  return GiveFixed(&Model, buffer);
}
HRESULT PALAPI PALSysinfo_GetFirmwareVersion(WCHAR* buffer) {
  return GiveFixed(&Firmware, buffer);
}
HRESULT PALAPI PALSysinfo_GetFirmwareVersionA(char* buffer) {
  return GiveFixed(&Firmware, buffer);
}
HRESULT PALAPI PALSysinfo_GetSerialNumber(WCHAR* buffer) {
  return GiveFixed(&Serial, buffer);
}
HRESULT PALAPI PALSysinfo_GetSerialNumberA(char* buffer) {
  return GiveFixed(&Serial, buffer);
}
HRESULT PALAPI PALSysinfo_GetHardwareConfiguration(WCHAR* buffer) {
  return GiveFixed(&Configuration, buffer);
}
HRESULT PALAPI PALSysinfo_GetHardwareConfigurationA(char* buffer) {
  return GiveFixed(&Configuration, buffer);
}
HRESULT PALAPI PALSysinfo_GetEtherMACAddress(WCHAR* buffer) {
  return GiveFixed(&Ethernet, buffer);
}
HRESULT PALAPI PALSysinfo_GetEtherMACAddressA(char* buffer) {
  return GiveFixed(&Ethernet, buffer);
}
HRESULT PALAPI PALSysinfo_GetOperatingSystemA(char* name, char* version) {
  return GiveOperatingSystem(name, version);
}
HRESULT PALAPI PALSysinfo_GetOperatingSystemW(WCHAR* name, WCHAR* version) {
  return GiveOperatingSystem(name, version);
}
HRESULT PALAPI PALSysinfo_GetOperatingSystem(WCHAR* buffer) {
  return GiveOperatingSystem(buffer, buffer);
}
HRESULT PALAPI PALSysinfo_GetDeviceDetailA(DWORD detail, char* buffer, DWORD* length) {
  return GiveDetail(detail, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetDeviceDetailW(DWORD detail, WCHAR* buffer, DWORD* length) {
  return GiveDetail(detail, buffer, length);
}

HRESULT PALAPI PALSysinfo_IsDravonelDevice() {
  WCHAR oem[256];
  if (ReadOem(oem) != FALSE) {
    for (const WCHAR* at = oem; *at != 0; ++at) {
      if (*at == 'D' && memcmp(at, TEXT("Dravonel"), 16) == 0) return S_OK;
    }
  }
  DWORD enabled = 0;
  const HRESULT result = PALMFGOpt_IsDataCollectionContentEnabled(&enabled);
  if (result < 0) return result;
  return enabled != 0 ? S_OK : E_FAIL;
}
