#include "scanner/scan_engine.h"

#include <atomic>

#include "frame/result.h"
#include "include/palmfgopt.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

static_assert(kDeviceNames[PAL_DEVICE_TYPE_ENG14] == WideText(TEXT("ENG14")));
static_assert(kDeviceNames[PAL_DEVICE_TYPE_ENG13] == WideText(TEXT("ENG13")));

constexpr ScanEngine kSpiClockEngine{
    true, ScanOperation::kSpiClockTrigger, {&ScanSetEnable, &PALSysio_SetScanPower}};
constexpr ScanEngine kCommonEngine{
    false, ScanOperation::kTrigger, {&PALSysio_SetScanPower, &ScanSetEnable}};

constinit std::atomic<DWORD> engine_type{PAL_DEVICE_TYPE_UNKNOWN};
constinit std::atomic<bool> power_is_on{false};

}  // namespace

const ScanEngine& ScanEngineOf(DWORD device_type) {
  return device_type == PAL_DEVICE_TYPE_ENG14 || device_type == PAL_DEVICE_TYPE_ENG13
             ? kSpiClockEngine
             : kCommonEngine;
}

const ScanEngine& CurrentScanEngine() {
  return ScanEngineOf(engine_type.load(std::memory_order_relaxed));
}

const ScanEngine& LearnScanEngine(DWORD device_type) {
  engine_type.store(device_type, std::memory_order_relaxed);
  return ScanEngineOf(device_type);
}

bool IsScanPowerOn() {
  return power_is_on.load(std::memory_order_relaxed);
}

void SetScanPowerState(bool is_on) {
  power_is_on.store(is_on, std::memory_order_relaxed);
}

HRESULT PALSysio_SetScanPower(BOOL on) {
  const HRESULT result = SendToScanDriver(ScanOperation::kPower, on);
  if (Succeeded(result)) SetScanPowerState(on != FALSE);
  return result;
}

HRESULT ScanSetEnable(BOOL enable) {
  return SendToScanDriver(ScanOperation::kEnable, enable);
}

HRESULT ScanSetOperationalMode(BOOL normal) {
  return SendToScanDriver(ScanOperation::kMode, normal);
}

}  // namespace pal
