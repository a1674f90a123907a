// The library's internals that no export reaches yet, as a test build of the library gives them
// out.
#ifndef TESTS_SUPPORT_INTERNALS_H_
#define TESTS_SUPPORT_INTERNALS_H_

#include "frame/facility.h"
#include "platform/wince.h"

struct Internals {
  DWORD (*trace)(DWORD debug_echo, DWORD category, const char* format, ...);
  DWORD (*sysio_trace)(DWORD ignored, DWORD category, const char* format, ...);
  HKEY (*root_from_name)(const char* name);
  // `units`: how many units of `text` there are, terminators included.
  HRESULT (*set_string)(HKEY, const WCHAR*, const WCHAR*, const WCHAR* text, DWORD units);
  HRESULT (*get_string_value)(HKEY, const WCHAR*, const WCHAR*, WCHAR*, DWORD* bytes);
  HRESULT (*set_dword)(HKEY, const WCHAR*, const WCHAR*, DWORD);
  HRESULT (*create_set_dword)(HKEY, const WCHAR*, const WCHAR*, DWORD);
  HRESULT (*get_dword)(HKEY, const WCHAR*, const WCHAR*, DWORD*);
  HRESULT (*set_binary)(HKEY, const WCHAR*, const WCHAR*, const BYTE*, DWORD bytes);
  HRESULT (*get_binary)(HKEY, const WCHAR*, const WCHAR*, BYTE*, DWORD* bytes);
  HRESULT (*get_string)(HKEY, const WCHAR*, const WCHAR*, WCHAR* text, DWORD units, DWORD* bytes);
  HRESULT (*wait_for_mutex)(pal::Facility, HANDLE, DWORD timeout_ms);
  HRESULT (*release_mutex)(pal::Facility, HANDLE);
  // Holds the mutex through a guard for a while; gives the wait's result.
  HRESULT (*hold_mutex)(pal::Facility, HANDLE, DWORD timeout_ms, DWORD hold_ms);
  HRESULT (*apply_audio_setting)();
  DWORD (*checksum_file)(const WCHAR* path);
};

// The name of the function that gives the table, in the test build.
extern "C" const Internals* GetInternals();

#endif  // TESTS_SUPPORT_INTERNALS_H_
