// The exported identity queries: each is one source through one converter.
#include <array>

#include "frame/result.h"
#include "include/palsysinfo.h"
#include "sysinfo/identity/identity_sources.h"
#include "sysinfo/identity/result_converter.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

// The source does not count the terminator of the hardware configuration; callers get it counted.
HRESULT HardwareConfiguration(char* buffer, DWORD* length) {
  const HRESULT result = PalGetHwConfig(buffer, length);
  if (Succeeded(result)) ++*length;
  return result;
}

template <WORD kParameter>
HRESULT FactoryDate(char* buffer, DWORD* length) {
  return PalGetDate(kParameter, buffer, length);
}

// By detail id. A detail without a source is one that no device has.
constexpr std::array<IdentitySource, PAL_DEVICE_DETAIL_COUNT> kSources = [] {
  std::array<IdentitySource, PAL_DEVICE_DETAIL_COUNT> sources{};
  sources[PAL_DETAIL_HARDWARE_CONFIGURATION] = &HardwareConfiguration;
  sources[PAL_DETAIL_SERIAL_NUMBER] = &PalGetSerialNum;
  sources[PAL_DETAIL_MODEL] = &PalGetModel;
  sources[PAL_DETAIL_DISPLAY_MODEL] = &PalGetDispayModel;
  sources[PAL_DETAIL_FIRMWARE_VERSION] = &PalGetFirmwareVer;
  sources[PAL_DETAIL_OS] = &PalGetOS;
  sources[PAL_DETAIL_OS_VERSION] = &PalGetOSVer;
  sources[PAL_DETAIL_FACTORY_DATE_1] = &FactoryDate<0x0003>;
  sources[PAL_DETAIL_FACTORY_DATE_2] = &FactoryDate<0x0004>;
  sources[PAL_DETAIL_QUALIFIED_SERIAL_NUMBER] = &PalGetQualifiedSerialNum;
  sources[PAL_DETAIL_ETHERNET_ADDRESS] = &PalGetEtherMACAddress;
  return sources;
}();

HRESULT Convert(IdentitySource source, char* buffer, DWORD* length) {
  return PalProcessResultExA(source, buffer, length);
}
HRESULT Convert(IdentitySource source, WCHAR* buffer, DWORD* length) {
  return PalSysIoRequestExW(source, buffer, length);
}

template <typename Unit>
HRESULT Query(PALDeviceDetail detail, Unit* buffer, DWORD* length) {
  return Convert(kSources[detail], buffer, length);
}

// For callers without a length: every buffer has the same size.
template <typename Unit>
HRESULT QueryFixed(PALDeviceDetail detail, Unit* buffer) {
  DWORD length = PAL_IDENTITY_FIXED_LENGTH;
  return Query(detail, buffer, &length);
}

template <typename Unit>
HRESULT QueryOperatingSystem(Unit* name, Unit* version) {
  const HRESULT result = QueryFixed(PAL_DETAIL_OS, name);
  return Failed(result) ? result : QueryFixed(PAL_DETAIL_OS_VERSION, version);
}

using DetailLine = TraceSource::Format<DWORD, DWORD>;
struct DetailLines {
  DetailLine entry;
  DetailLine invalid;
  TraceSource::Format<HRESULT, DWORD, DWORD> exit;
};

template <typename Unit>
HRESULT QueryAnyDetail(const DetailLines& lines, DWORD detail, Unit* buffer, DWORD* length) {
  const DWORD process = GetCurrentProcessId();
  kIdentityTrace.Info(lines.entry, detail, process);
  HRESULT result = PAL_SYSINFO_E_INVALID_INPUT;
  if (detail >= kSources.size()) {
    kIdentityTrace.Error(lines.invalid, detail, process);
  } else if (const IdentitySource source = kSources[detail]; source == nullptr) {
    result = E_NOTIMPL;
  } else {
    result = Convert(source, buffer, length);
  }
  kIdentityTrace.Info(lines.exit, result, detail, process);
  return result;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALSysinfo_GetModelExA(char* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_MODEL, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetModelExW(WCHAR* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_MODEL, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetFirmwareVerExA(char* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_FIRMWARE_VERSION, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetFirmwareVerExW(WCHAR* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_FIRMWARE_VERSION, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetSerialNumberExA(char* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_SERIAL_NUMBER, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetSerialNumberExW(WCHAR* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_SERIAL_NUMBER, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetHwConfigExA(char* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_HARDWARE_CONFIGURATION, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetHwConfigExW(WCHAR* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_HARDWARE_CONFIGURATION, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetOSExA(char* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_OS, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetOSExW(WCHAR* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_OS, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetOSVerExA(char* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_OS_VERSION, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetOSVerExW(WCHAR* buffer, DWORD* length) {
  return pal::Query(PAL_DETAIL_OS_VERSION, buffer, length);
}

// The names without and with W are one function: exports.def says so.
HRESULT PALAPI PALSysinfo_GetModel(WCHAR* buffer) {
  return pal::QueryFixed(PAL_DETAIL_MODEL, buffer);
}
HRESULT PALAPI PALSysinfo_GetModelA(char* buffer) {
  return pal::QueryFixed(PAL_DETAIL_MODEL, buffer);
}
HRESULT PALAPI PALSysinfo_GetFirmwareVersion(WCHAR* buffer) {
  return pal::QueryFixed(PAL_DETAIL_FIRMWARE_VERSION, buffer);
}
HRESULT PALAPI PALSysinfo_GetFirmwareVersionA(char* buffer) {
  return pal::QueryFixed(PAL_DETAIL_FIRMWARE_VERSION, buffer);
}
HRESULT PALAPI PALSysinfo_GetSerialNumber(WCHAR* buffer) {
  return pal::QueryFixed(PAL_DETAIL_SERIAL_NUMBER, buffer);
}
HRESULT PALAPI PALSysinfo_GetSerialNumberA(char* buffer) {
  return pal::QueryFixed(PAL_DETAIL_SERIAL_NUMBER, buffer);
}
HRESULT PALAPI PALSysinfo_GetHardwareConfiguration(WCHAR* buffer) {
  return pal::QueryFixed(PAL_DETAIL_HARDWARE_CONFIGURATION, buffer);
}
HRESULT PALAPI PALSysinfo_GetHardwareConfigurationA(char* buffer) {
  return pal::QueryFixed(PAL_DETAIL_HARDWARE_CONFIGURATION, buffer);
}
HRESULT PALAPI PALSysinfo_GetEtherMACAddress(WCHAR* buffer) {
  return pal::QueryFixed(PAL_DETAIL_ETHERNET_ADDRESS, buffer);
}
HRESULT PALAPI PALSysinfo_GetEtherMACAddressA(char* buffer) {
  return pal::QueryFixed(PAL_DETAIL_ETHERNET_ADDRESS, buffer);
}

HRESULT PALAPI PALSysinfo_GetOperatingSystemA(char* name, char* version) {
  return pal::QueryOperatingSystem(name, version);
}
HRESULT PALAPI PALSysinfo_GetOperatingSystemW(WCHAR* name, WCHAR* version) {
  return pal::QueryOperatingSystem(name, version);
}
// The version overwrites the name: callers of this export expect the version.
HRESULT PALAPI PALSysinfo_GetOperatingSystem(WCHAR* buffer) {
  return pal::QueryOperatingSystem(buffer, buffer);
}

HRESULT PALAPI PALSysinfo_GetDeviceDetailA(DWORD detail, char* buffer, DWORD* length) {
  constexpr pal::DetailLines kLines{
      "PALSysinfo_GetDeviceDetailA(%d,*,*). Entry. procid:0x%x",
      "PALSysinfo_GetDeviceDetailA(%d,*,*). Input detail invalid. procid:0x%x",
      "0x%x=PALSysinfo_GetDeviceDetailA(%d,*,*). Exit. procid:0x%x"};
  return pal::QueryAnyDetail(kLines, detail, buffer, length);
}
HRESULT PALAPI PALSysinfo_GetDeviceDetailW(DWORD detail, WCHAR* buffer, DWORD* length) {
  constexpr pal::DetailLines kLines{
      "PALSysinfo_GetDeviceDetailW(%d,*,*). Entry. procid:0x%x",
      "PALSysinfo_GetDeviceDetailW(%d,*,*). Input detail invalid. procid:0x%x",
      "0x%x=PALSysinfo_GetDeviceDetailW(%d,*,*). Exit. procid:0x%x"};
  return pal::QueryAnyDetail(kLines, detail, buffer, length);
}
