/**
 * @file paltypes.h
 * @brief The types of the exported interface.
 *
 * Where <windows.h> was included before, they are the platform's own. Elsewhere they are declared
 * here with the platform's widths: `WCHAR` is a UTF-16 unit, `DWORD` and `HRESULT` have 32 bits.
 */
#ifndef PALTYPES_H_
#define PALTYPES_H_

/* The guards of <windows.h> on a desktop and on the device. */
#if defined(_WINDOWS_) || defined(__WINDOWS__)

#define PALAPI WINAPI

#else

#include <stdint.h>

#define PALAPI

typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef uint32_t UINT;
typedef int32_t INT;
typedef int32_t LONG;
typedef int32_t BOOL;
typedef int32_t HRESULT;
#ifdef __cplusplus
typedef char16_t WCHAR;
#else
typedef uint_least16_t WCHAR;
#endif

#endif /* <windows.h> */

/* Around the declarations of a header: C linkage, and visible outside of the library. */
#if defined(_WIN32)
#define PAL_VISIBILITY_PUSH
#define PAL_VISIBILITY_POP
#else
#define PAL_VISIBILITY_PUSH _Pragma("GCC visibility push(default)")
#define PAL_VISIBILITY_POP _Pragma("GCC visibility pop")
#endif

#ifdef __cplusplus
#define PAL_INTERFACE_BEGIN PAL_VISIBILITY_PUSH extern "C" {
#define PAL_INTERFACE_END \
  }                       \
  PAL_VISIBILITY_POP
#else
#define PAL_INTERFACE_BEGIN PAL_VISIBILITY_PUSH
#define PAL_INTERFACE_END PAL_VISIBILITY_POP
#endif

#endif /* PALTYPES_H_ */
