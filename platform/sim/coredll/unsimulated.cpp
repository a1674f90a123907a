// Calls that nothing simulates yet: they fail and are recorded as misuse, so that nothing pretends.
#include "platform/sim/coredll/call.h"

using sim::CallId;
using sim::NotSimulated;

HANDLE CreateThread(LPSECURITY_ATTRIBUTES /*security*/, DWORD /*stack_bytes*/,
                    LPTHREAD_START_ROUTINE /*start*/, LPVOID /*argument*/, DWORD /*flags*/,
                    LPDWORD /*thread_id*/) {
  return NotSimulated<HANDLE>(CallId::CreateThread, nullptr);
}

void FreeLibraryAndExitThread(HMODULE /*module*/, DWORD /*exit_code*/) {
  NotSimulated(CallId::FreeLibraryAndExitThread, 0);
}

DWORD GetModuleFileNameW(HMODULE /*module*/, LPWSTR /*name*/, DWORD /*units*/) {
  return NotSimulated(CallId::GetModuleFileNameW, DWORD{0});
}

DWORD SetSystemPowerState(LPCWSTR /*state*/, DWORD /*flags*/, DWORD /*options*/) {
  return NotSimulated(CallId::SetSystemPowerState, static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
}

void SystemIdleTimerReset() {
  NotSimulated(CallId::SystemIdleTimerReset, 0);
}

LONG ChangeDisplaySettingsEx(LPCWSTR /*device*/, DEVMODEW* /*mode*/, HWND /*unused*/,
                             DWORD /*flags*/, LPVOID /*parameter*/) {
  return NotSimulated(CallId::ChangeDisplaySettingsEx, LONG{-1});
}

BOOL NLedGetDeviceInfo(UINT /*info_id*/, void* /*output*/) {
  return NotSimulated(CallId::NLedGetDeviceInfo, FALSE);
}

BOOL NLedSetDevice(UINT /*device_id*/, void* /*input*/) {
  return NotSimulated(CallId::NLedSetDevice, FALSE);
}

MMRESULT waveOutGetVolume(HWAVEOUT /*output*/, LPDWORD /*volume*/) {
  return NotSimulated(CallId::waveOutGetVolume, MMRESULT{1});
}

MMRESULT waveOutSetVolume(HWAVEOUT /*output*/, DWORD /*volume*/) {
  return NotSimulated(CallId::waveOutSetVolume, MMRESULT{1});
}

MMRESULT waveInMessage(HWAVEIN /*input*/, UINT /*message*/, uintptr_t /*parameter1*/,
                       uintptr_t /*parameter2*/) {
  return NotSimulated(CallId::waveInMessage, MMRESULT{1});
}

BOOL PlaySoundW(LPCWSTR /*sound*/, HMODULE /*module*/, DWORD /*flags*/) {
  return NotSimulated(CallId::PlaySoundW, FALSE);
}

BOOL CryptAcquireContextW(HCRYPTPROV* /*provider*/, LPCWSTR /*container*/,
                          LPCWSTR /*provider_name*/, DWORD /*type*/, DWORD /*flags*/) {
  return NotSimulated(CallId::CryptAcquireContextW, FALSE);
}

BOOL CryptCreateHash(HCRYPTPROV /*provider*/, ALG_ID /*algorithm*/, HCRYPTKEY /*key*/,
                     DWORD /*flags*/, HCRYPTHASH* /*hash*/) {
  return NotSimulated(CallId::CryptCreateHash, FALSE);
}

BOOL CryptHashData(HCRYPTHASH /*hash*/, const BYTE* /*data*/, DWORD /*bytes*/, DWORD /*flags*/) {
  return NotSimulated(CallId::CryptHashData, FALSE);
}

BOOL CryptGetHashParam(HCRYPTHASH /*hash*/, DWORD /*parameter*/, BYTE* /*data*/, DWORD* /*bytes*/,
                       DWORD /*flags*/) {
  return NotSimulated(CallId::CryptGetHashParam, FALSE);
}

BOOL CryptDestroyHash(HCRYPTHASH /*hash*/) {
  return NotSimulated(CallId::CryptDestroyHash, FALSE);
}

BOOL CryptReleaseContext(HCRYPTPROV /*provider*/, DWORD /*flags*/) {
  return NotSimulated(CallId::CryptReleaseContext, FALSE);
}

DWORD GetNumberOfInterfaces(LPDWORD /*count*/) {
  return NotSimulated(CallId::GetNumberOfInterfaces,
                      static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
}

DWORD GetIfEntry(MIB_IFROW* /*row*/) {
  return NotSimulated(CallId::GetIfEntry, static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
}

int BthGetMode(LPDWORD /*mode*/) {
  return NotSimulated(CallId::BthGetMode, ERROR_CALL_NOT_IMPLEMENTED);
}
