#include "platform/conformance/queries.h"

#include <tuple>
#include <type_traits>

#include "include/pal.h"

namespace conformance {
namespace {

// What an export gets for a parameter, and what it gave there. A number that goes in is 0; where a
// buffer's length goes in, it is that of the room.
template <typename T>
struct Argument {
  static_assert(std::is_integral_v<T>);
  T value = 0;
  void AddTo(Answer& /*answer*/) const {}
};
template <>
struct Argument<const char*> {
  const char* value = "Camera";
  void AddTo(Answer& /*answer*/) const {}
};
template <>
struct Argument<const WCHAR*> {
  const WCHAR* value = TEXT("Camera");
  void AddTo(Answer& /*answer*/) const {}
};
template <typename Number>
struct OutNumber {
  Number number = 64;
  Number* value = &number;
  void AddTo(Answer& answer) const { answer.Add("%d", number); }
};
template <>
struct Argument<DWORD*> : OutNumber<DWORD> {};
template <>
struct Argument<LONG*> : OutNumber<LONG> {};
template <>
struct Argument<char*> {
  char text[64] = {};
  char* value = text;
  void AddTo(Answer& answer) const { answer.Add("'%s'", text); }
};
template <>
struct Argument<WCHAR*> {
  WCHAR text[64] = {};
  WCHAR* value = text;
  void AddTo(Answer& answer) const { answer.Add("'%ls'", text); }
};

template <>
struct Argument<PALComPortPower*> {
  PALComPortPower power{};
  PALComPortPower* value = &power;
  void AddTo(Answer& answer) const { answer.Add("%d", power.enable); }
};

template <typename Result, typename... Parameters>
void Call(Answer& answer, Result (*function)(Parameters...)) {
  std::tuple<Argument<Parameters>...> arguments;
  std::apply(
      [&](auto&... argument) {
        answer.Add("0x%x", function(argument.value...));
        (argument.AddTo(answer), ...);
      },
      arguments);
}

using AnyFunction = void (*)();  // the one that compilers let a function pointer pass through

constexpr Query kQueries[] = {
#define QUERY(name)                                                                           \
  {#name, TEXT(#name), [](Answer& answer, FARPROC entry) {                                    \
     Call(answer, reinterpret_cast<decltype(&::name)>(reinterpret_cast<AnyFunction>(entry))); \
   }},
#include "platform/conformance/queries.inc"
#undef QUERY
};

}  // namespace

std::span<const Query> Queries() {
  return kQueries;
}

}  // namespace conformance
