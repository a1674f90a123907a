#include "feedback/good_read_indicator.h"

#include "frame/result.h"
#include "frame/trace.h"
#include "include/palbeep.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kBeeper};

constexpr const WCHAR* kIndicatorPath = TEXT("SOFTWARE\\Dravonel\\PAL");
constexpr DWORD kLastValue = PAL_GRI_VIBRATION_TWO_TONES;

}  // namespace

HRESULT ReadGoodReadIndicator(DWORD scan_type, DWORD& value) {
  return PALRegGetDword(HKEY_LOCAL_MACHINE, kIndicatorPath, kIndicatorNames[scan_type], &value);
}

}  // namespace pal

HRESULT PALAPI PALBEEPSetGRI(DWORD scan_type, DWORD value) {
  if (value > pal::kLastValue) {
    pal::kTrace.Error("PALBEEPSetGRI - Invalid input: %d\r\n", value);
    return E_FAIL;
  }
  if (scan_type >= pal::kIndicatorNames.size()) return E_FAIL;
  const WCHAR* const name = pal::kIndicatorNames[scan_type];
  const HRESULT result = pal::PALRegSetDword(HKEY_LOCAL_MACHINE, pal::kIndicatorPath, name, value);
  if (pal::Failed(result)) {
    pal::kTrace.Error("SetGRI - ERROR writing %ls. scantype: %d, procid: 0x%x, hr: 0x%x\r\n", name,
                      scan_type, GetCurrentProcessId(), result);
  }
  return result;
}

HRESULT PALAPI PALBEEPGetGRI(DWORD scan_type, DWORD* value) {
  if (value == nullptr || scan_type >= pal::kIndicatorNames.size()) return E_FAIL;
  const HRESULT result = pal::ReadGoodReadIndicator(scan_type, *value);
  if (pal::Failed(result)) {
    pal::kTrace.Error(
        "GetGRI - ERROR reading numbeeps from reg. scantype: %ls, procid: 0x%x, hr: 0x%x\r\n",
        pal::kIndicatorNames[scan_type], GetCurrentProcessId(), result);
  }
  return result;
}
