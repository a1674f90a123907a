#include "tests/support/internals.h"

#include <span>

#include "configstore/registry_file.h"
#include "frame/mutex.h"
#include "frame/registry.h"
#include "frame/tap_volume.h"
#include "frame/trace.h"

namespace {

HRESULT SetString(HKEY root, const WCHAR* path, const WCHAR* name, const WCHAR* text, DWORD units) {
  return pal::PALRegSetString(root, path, name, std::span(text, units));
}

HRESULT GetString(HKEY root, const WCHAR* path, const WCHAR* name, WCHAR* text, DWORD units,
                  DWORD* bytes) {
  return pal::PALRegGetString(root, path, name, std::span(text, units), bytes);
}

HRESULT HoldMutex(pal::Facility facility, HANDLE mutex, DWORD timeout_ms, DWORD hold_ms) {
  const pal::MutexGuard guard(facility, mutex, timeout_ms);
  Sleep(hold_ms);
  return guard.wait_result();
}

constexpr Internals kInternals{
    &pal::PALTrace,
    &pal::PALSysioTrace,
    &pal::PALRegRootFromName,
    &SetString,
    &pal::PALRegGetStringValue,
    &pal::PALRegSetDword,
    &pal::PALRegCreateSetDword,
    &pal::PALRegGetDword,
    &pal::PALRegSetBinary,
    &pal::PALRegGetBinary,
    &GetString,
    &pal::PALWaitForMutex,
    &pal::PALReleaseMutexIfValid,
    &HoldMutex,
    &pal::ApplyAudioSetting,
    &pal::PALInitChecksumFile,
};

}  // namespace

extern "C" [[gnu::visibility("default")]] const Internals* GetInternals() {
  return &kInternals;
}
