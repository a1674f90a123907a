// What may cross the borders of the library: values of one 32-bit word. The platform passes 64-bit
// and floating-point values in other places than this compiler does.
#include <type_traits>

#include "include/pal.h"
#include "platform/wince.h"

namespace borders {

template <typename T>
constexpr bool kIsWord = sizeof(T) <= sizeof(DWORD) && !std::is_floating_point_v<T>;
template <>
constexpr bool kIsWord<void> = true;

template <typename Result, typename... Arguments>
constexpr bool TakesWords(Result (* /*function*/)(Arguments...)) {
  return kIsWord<Result> && (kIsWord<Arguments> && ...);
}
template <typename Result, typename... Arguments>
constexpr bool TakesWords(Result (* /*function*/)(Arguments..., ...)) {
  return kIsWord<Result> && (kIsWord<Arguments> && ...);
}

// The compiler's C runtime has these three a second time, with wider characters.
size_t wcslen(const WCHAR* text);
size_t mbstowcs(WCHAR* wide, const char* narrow, size_t count);
size_t wcstombs(char* narrow, const WCHAR* wide, size_t count);

#define PAL_EXPORT(name) static_assert(TakesWords(&name), #name);
#define SIM_CALL(name) PAL_EXPORT(name)
#include "calls.inc"
#include "exports.inc"

}  // namespace borders
