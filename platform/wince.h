// The calls and records of the platform, Windows CE 5, that the library uses: declarations only.
//
// They have the platform's names, widths and layouts on every machine. The linker decides which
// platform answers the calls. No source may include <windows.h> as well.
#ifndef PLATFORM_WINCE_H_
#define PLATFORM_WINCE_H_

#include <stdarg.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include "../include/palresult.h"
#include "../include/paltypes.h"

#define TEXT(literal) u##literal
#define WINAPI

using ULONG = uint32_t;
using LPVOID = void*;
using LPCVOID = const void*;
using LPDWORD = DWORD*;
using LPBYTE = BYTE*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;

using HANDLE = void*;
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HWND = struct HWND__*;
using HKEY = struct HKEY__*;
using PHKEY = HKEY*;
using HWAVEOUT = struct HWAVEOUT__*;
using HWAVEIN = struct HWAVEIN__*;
using HCRYPTPROV = uintptr_t;
using HCRYPTKEY = uintptr_t;
using HCRYPTHASH = uintptr_t;
using ALG_ID = UINT;
using MMRESULT = UINT;
using FARPROC = int(WINAPI*)();
using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID);
using REGSAM = DWORD;

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;
constexpr size_t MAX_PATH = 260;

constexpr LONG ERROR_SUCCESS = 0;
constexpr LONG ERROR_FILE_NOT_FOUND = 2;
constexpr LONG ERROR_PATH_NOT_FOUND = 3;
constexpr LONG ERROR_ACCESS_DENIED = 5;
constexpr LONG ERROR_INVALID_HANDLE = 6;
constexpr LONG ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr LONG ERROR_INVALID_DATA = 13;
constexpr LONG ERROR_GEN_FAILURE = 31;
constexpr LONG ERROR_SHARING_VIOLATION = 32;
constexpr LONG ERROR_DEV_NOT_EXIST = 55;
constexpr LONG ERROR_INVALID_PARAMETER = 87;
constexpr LONG ERROR_BUFFER_OVERFLOW = 111;
constexpr LONG ERROR_CALL_NOT_IMPLEMENTED = 120;
constexpr LONG ERROR_INSUFFICIENT_BUFFER = 122;
constexpr LONG ERROR_MOD_NOT_FOUND = 126;
constexpr LONG ERROR_PROC_NOT_FOUND = 127;
constexpr LONG ERROR_ALREADY_EXISTS = 183;
constexpr LONG ERROR_MORE_DATA = 234;
constexpr LONG ERROR_NO_MORE_ITEMS = 259;
constexpr LONG ERROR_NOT_OWNER = 288;
constexpr LONG ERROR_KEY_DELETED = 1018;

constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_ABANDONED = 0x80;
constexpr DWORD WAIT_TIMEOUT = 258;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD FILE_SHARE_READ = 1;
constexpr DWORD FILE_SHARE_WRITE = 2;
constexpr DWORD CREATE_NEW = 1;
constexpr DWORD CREATE_ALWAYS = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD OPEN_ALWAYS = 4;
constexpr DWORD TRUNCATE_EXISTING = 5;
constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
constexpr DWORD FILE_BEGIN = 0;
constexpr DWORD FILE_CURRENT = 1;
constexpr DWORD FILE_END = 2;

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_EXPAND_SZ = 2;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_MULTI_SZ = 7;
constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
constexpr REGSAM KEY_SET_VALUE = 0x0002;
constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

constexpr DWORD DLL_PROCESS_DETACH = 0;
constexpr DWORD DLL_PROCESS_ATTACH = 1;
constexpr DWORD DLL_THREAD_ATTACH = 2;
constexpr DWORD DLL_THREAD_DETACH = 3;

constexpr DWORD EVENT_PULSE = 1;
constexpr DWORD EVENT_RESET = 2;
constexpr DWORD EVENT_SET = 3;

constexpr DWORD VER_PLATFORM_WIN32_CE = 3;

constexpr DWORD POWER_STATE_RESET = 0x00800000;
constexpr DWORD POWER_FORCE = 0x00001000;

constexpr UINT SPI_GETPLATFORMTYPE = 257;
constexpr UINT SPI_GETOEMINFO = 258;

constexpr DWORD SND_ASYNC = 0x00000001;
constexpr DWORD SND_LOOP = 0x00000008;
constexpr DWORD SND_FILENAME = 0x00020000;

constexpr UINT NLED_SUPPORTS_INFO_ID = 1;
constexpr UINT NLED_SETTINGS_INFO_ID = 2;

constexpr DWORD DM_DISPLAYORIENTATION = 0x00800000;
constexpr DWORD DMDO_0 = 0;
constexpr DWORD DMDO_90 = 1;
constexpr DWORD DMDO_180 = 2;
constexpr DWORD DMDO_270 = 4;
constexpr DWORD CDS_TEST = 0x00000002;
constexpr DWORD CDS_RESET = 0x40000000;
constexpr LONG DISP_CHANGE_SUCCESSFUL = 0;
constexpr LONG DISP_CHANGE_FAILED = -1;
constexpr LONG DISP_CHANGE_BADMODE = -2;
constexpr LONG DISP_CHANGE_BADFLAGS = -4;
constexpr LONG DISP_CHANGE_BADPARAM = -5;

constexpr DWORD PROV_RSA_FULL = 1;
constexpr DWORD CRYPT_NEWKEYSET = 0x00000008;
constexpr DWORD HP_HASHVAL = 0x0002;
constexpr DWORD HP_HASHSIZE = 0x0004;
constexpr ALG_ID CALG_SHA1 = 0x00008004;
constexpr LONG NTE_BAD_KEYSET = static_cast<LONG>(0x80090016);

// Casts of integers to pointers cannot be constants, so these are macros, as on the platform.
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(~uintptr_t{0}))
#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(uintptr_t{0x80000000}))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(uintptr_t{0x80000001}))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(uintptr_t{0x80000002}))
#define HKEY_USERS (reinterpret_cast<HKEY>(uintptr_t{0x80000003}))

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

struct SECURITY_ATTRIBUTES;
struct OVERLAPPED;
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;
using LPOVERLAPPED = OVERLAPPED*;

struct PROCESS_INFORMATION {
  HANDLE hProcess;
  HANDLE hThread;
  DWORD dwProcessId;
  DWORD dwThreadId;
};

struct STARTUPINFOW;

struct OSVERSIONINFOW {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  WCHAR szCSDVersion[128];
};
static_assert(sizeof(OSVERSIONINFOW) == 276, "the platform's layout");

struct NLED_SUPPORTS_INFO {
  UINT LedNum;
  LONG lCycleAdjust;  // -1 marks a vibrator
  BOOL fAdjustTotalCycleTime;
  BOOL fAdjustOnTime;
  BOOL fAdjustOffTime;
  BOOL fMetaCycleOn;
  BOOL fMetaCycleOff;
};
static_assert(sizeof(NLED_SUPPORTS_INFO) == 28, "the platform's layout");

struct NLED_SETTINGS_INFO {
  UINT LedNum;
  INT OffOnBlink;
  LONG TotalCycleTime;  // times in microseconds
  LONG OnTime;
  LONG OffTime;
  INT MetaCycleOn;
  INT MetaCycleOff;
};
static_assert(sizeof(NLED_SETTINGS_INFO) == 28, "the platform's layout");

struct DEVMODEW {
  WCHAR dmDeviceName[32];
  WORD dmSpecVersion;
  WORD dmDriverVersion;
  WORD dmSize;
  WORD dmDriverExtra;
  DWORD dmFields;
  short dmOrientation;
  short dmPaperSize;
  short dmPaperLength;
  short dmPaperWidth;
  short dmScale;
  short dmCopies;
  short dmDefaultSource;
  short dmPrintQuality;
  short dmColor;
  short dmDuplex;
  short dmYResolution;
  short dmTTOption;
  short dmCollate;
  WCHAR dmFormName[32];
  WORD dmLogPixels;
  DWORD dmBitsPerPel;
  DWORD dmPelsWidth;
  DWORD dmPelsHeight;
  DWORD dmDisplayFlags;
  DWORD dmDisplayFrequency;
  DWORD dmDisplayOrientation;
};
static_assert(sizeof(DEVMODEW) == 192, "the platform's layout");
static_assert(offsetof(DEVMODEW, dmSize) == 68 && offsetof(DEVMODEW, dmFields) == 72,
              "the platform's layout");
static_assert(offsetof(DEVMODEW, dmDisplayOrientation) == 188, "the platform's layout");

struct IP_ADDRESS_STRING {
  char String[16];
};

struct IP_ADDR_STRING {
  IP_ADDR_STRING* Next;
  IP_ADDRESS_STRING IpAddress;
  IP_ADDRESS_STRING IpMask;
  DWORD Context;
};

struct IP_ADAPTER_INFO {
  IP_ADAPTER_INFO* Next;
  DWORD ComboIndex;
  char AdapterName[260];
  char Description[132];
  UINT AddressLength;
  BYTE Address[8];
  DWORD Index;
  UINT Type;
  UINT DhcpEnabled;
  IP_ADDR_STRING* CurrentIpAddress;
  IP_ADDR_STRING IpAddressList;
  IP_ADDR_STRING GatewayList;
  IP_ADDR_STRING DhcpServer;
  BOOL HaveWins;
  IP_ADDR_STRING PrimaryWinsServer;
  IP_ADDR_STRING SecondaryWinsServer;
  LONG LeaseObtained;
  LONG LeaseExpires;
};

struct MIB_IFROW {
  WCHAR wszName[256];
  DWORD dwIndex;
  DWORD dwType;
  DWORD dwMtu;
  DWORD dwSpeed;
  DWORD dwPhysAddrLen;
  BYTE bPhysAddr[8];
  DWORD dwAdminStatus;
  DWORD dwOperStatus;
  DWORD dwLastChange;
  DWORD dwInOctets;
  DWORD dwInUcastPkts;
  DWORD dwInNUcastPkts;
  DWORD dwInDiscards;
  DWORD dwInErrors;
  DWORD dwInUnknownProtos;
  DWORD dwOutOctets;
  DWORD dwOutUcastPkts;
  DWORD dwOutNUcastPkts;
  DWORD dwOutDiscards;
  DWORD dwOutErrors;
  DWORD dwOutQLen;
  DWORD dwDescrLen;
  BYTE bDescr[256];
};
static_assert(sizeof(MIB_IFROW) == 860, "the platform's layout");

extern "C" {

LONG WINAPI RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, REGSAM access, PHKEY result);
LONG WINAPI RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR key_class, DWORD options,
                            REGSAM access, LPSECURITY_ATTRIBUTES security, PHKEY result,
                            LPDWORD disposition);
LONG WINAPI RegCloseKey(HKEY key);
LONG WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                             LPDWORD bytes);
LONG WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                           DWORD bytes);
LONG WINAPI RegDeleteValueW(HKEY key, LPCWSTR name);
LONG WINAPI RegDeleteKeyW(HKEY key, LPCWSTR path);
LONG WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD name_units, LPDWORD reserved,
                          LPWSTR key_class, LPDWORD class_units, FILETIME* last_write);
LONG WINAPI RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD name_units, LPDWORD reserved,
                          LPDWORD type, LPBYTE data, LPDWORD bytes);
LONG WINAPI RegFlushKey(HKEY key);

HANDLE WINAPI CreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD flags, HANDLE unused);
BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD bytes_read,
                     LPOVERLAPPED unused);
BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD bytes_written,
                      LPOVERLAPPED unused);
DWORD WINAPI SetFilePointer(HANDLE file, LONG distance, LONG* distance_high, DWORD origin);
DWORD WINAPI GetFileSize(HANDLE file, LPDWORD size_high);
DWORD WINAPI GetFileAttributesW(LPCWSTR name);
BOOL WINAPI CloseHandle(HANDLE object);
BOOL WINAPI DeviceIoControl(HANDLE device, DWORD code, LPVOID in, DWORD in_bytes, LPVOID out,
                            DWORD out_bytes, LPDWORD returned, LPOVERLAPPED unused);
BOOL WINAPI KernelIoControl(DWORD code, LPVOID in, DWORD in_bytes, LPVOID out, DWORD out_bytes,
                            LPDWORD returned);

HANDLE WINAPI CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL initial_owner, LPCWSTR name);
BOOL WINAPI ReleaseMutex(HANDLE mutex);
HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manual_reset, BOOL initial_state,
                           LPCWSTR name);
BOOL WINAPI EventModify(HANDLE event, DWORD action);
DWORD WINAPI WaitForSingleObject(HANDLE object, DWORD timeout_ms);
HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES security, DWORD stack_bytes,
                           LPTHREAD_START_ROUTINE start, LPVOID argument, DWORD flags,
                           LPDWORD thread_id);
void WINAPI Sleep(DWORD ms);
DWORD WINAPI GetTickCount();
BOOL WINAPI CreateProcessW(LPCWSTR image, LPCWSTR command_line, LPSECURITY_ATTRIBUTES process,
                           LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags,
                           LPVOID environment, LPWSTR directory, STARTUPINFOW* startup,
                           PROCESS_INFORMATION* information);

DWORD WINAPI GetLastError();
void WINAPI SetLastError(DWORD error);
HINSTANCE WINAPI LoadLibraryW(LPCWSTR name);
BOOL WINAPI FreeLibrary(HMODULE module);
[[noreturn]] void WINAPI FreeLibraryAndExitThread(HMODULE module, DWORD exit_code);
FARPROC WINAPI GetProcAddressW(HMODULE module, LPCWSTR name);
DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR name, DWORD units);
void WINAPI NKDbgPrintfW(LPCWSTR format, ...);

BOOL WINAPI GetVersionExW(OSVERSIONINFOW* version);
BOOL WINAPI SystemParametersInfoW(UINT action, UINT parameter, LPVOID value, UINT flags);
DWORD WINAPI SetSystemPowerState(LPCWSTR state, DWORD flags, DWORD options);
void WINAPI SystemIdleTimerReset();
LONG WINAPI ChangeDisplaySettingsEx(LPCWSTR device, DEVMODEW* mode, HWND unused, DWORD flags,
                                    LPVOID parameter);

BOOL WINAPI NLedGetDeviceInfo(UINT info_id, void* output);
BOOL WINAPI NLedSetDevice(UINT device_id, void* input);
MMRESULT WINAPI waveOutGetVolume(HWAVEOUT output, LPDWORD volume);
MMRESULT WINAPI waveOutSetVolume(HWAVEOUT output, DWORD volume);
MMRESULT WINAPI waveInMessage(HWAVEIN input, UINT message, uintptr_t parameter1,
                              uintptr_t parameter2);
BOOL WINAPI PlaySoundW(LPCWSTR sound, HMODULE module, DWORD flags);

BOOL WINAPI CryptAcquireContextW(HCRYPTPROV* provider, LPCWSTR container, LPCWSTR provider_name,
                                 DWORD type, DWORD flags);
BOOL WINAPI CryptCreateHash(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTKEY key, DWORD flags,
                            HCRYPTHASH* hash);
BOOL WINAPI CryptHashData(HCRYPTHASH hash, const BYTE* data, DWORD bytes, DWORD flags);
BOOL WINAPI CryptGetHashParam(HCRYPTHASH hash, DWORD parameter, BYTE* data, DWORD* bytes,
                              DWORD flags);
BOOL WINAPI CryptDestroyHash(HCRYPTHASH hash);
BOOL WINAPI CryptReleaseContext(HCRYPTPROV provider, DWORD flags);

int _stricmp(const char* left, const char* right);
int _strnicmp(const char* left, const char* right, size_t count);
int _vsnprintf(char* buffer, size_t count, const char* format, va_list arguments);

DWORD WINAPI GetAdaptersInfo(IP_ADAPTER_INFO* adapters, ULONG* bytes);
DWORD WINAPI GetNumberOfInterfaces(LPDWORD count);
DWORD WINAPI GetIfEntry(MIB_IFROW* row);

int WINAPI BthGetMode(LPDWORD mode);

// The device has no such import: it reads the number inline from the kernel's user data page.
DWORD WINAPI GetCurrentProcessId();

// The library's own entry, called by the loader.
[[gnu::visibility("default")]] BOOL WINAPI DllMain(HANDLE module, DWORD reason, LPVOID reserved);

}  // extern "C"

// The C runtime's functions for the platform's 16-bit characters. The host's own take wider ones.
int _wcsicmp(const WCHAR* left, const WCHAR* right);
int _wcsnicmp(const WCHAR* left, const WCHAR* right, size_t count);
size_t wcslen(const WCHAR* text);
size_t mbstowcs(WCHAR* wide, const char* narrow, size_t count);
size_t wcstombs(char* narrow, const WCHAR* wide, size_t count);

// coredll does not export these two. The platform's headers define them with EventModify.
inline BOOL SetEvent(HANDLE event) {
  return EventModify(event, EVENT_SET);
}
inline BOOL ResetEvent(HANDLE event) {
  return EventModify(event, EVENT_RESET);
}

#endif  // PLATFORM_WINCE_H_
