// A fuzz target of the exports over arguments of any kind: any number, no address, texts of any
// content, and buffers of any size with guard bytes on both sides.
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>

#include "tests/fuzz/fuzzed_device.h"

namespace {

template <class Type>
constexpr bool kIsBuffer = std::is_same_v<Type, char*> || std::is_same_v<Type, WCHAR*>;

// Makes arguments from an input, in a caller's memory.
class Arguments {
 public:
  // `fixed_bytes`: the size that the export takes a buffer for a text to have; 0: the caller tells
  // it in the number behind the buffer.
  Arguments(FuzzedDataProvider& input, Room& room, DWORD fixed_bytes)
      : input_(input), room_(room), fixed_bytes_(fixed_bytes) {}

  template <class Type>
  Type Take() {
    if constexpr (!std::is_pointer_v<Type>) {
      return static_cast<Type>(Number());
    } else {
      return input_.ConsumeIntegral<std::uint8_t>() == 0 ? nullptr : Memory(Type{});
    }
  }

  // Whether the text in each buffer ends there.
  [[nodiscard]] bool TextsEnd() const {
    return std::ranges::all_of(buffers_, [](const auto& ends) { return ends(); });
  }

 private:
  DWORD Number() {
    return input_.ConsumeBool() ? input_.ConsumeIntegral<DWORD>()
                                : static_cast<DWORD>(input_.ConsumeIntegral<std::int8_t>());
  }

  template <class Unit>
  Unit* Buffer() {
    const DWORD bytes =
        fixed_bytes_ != 0 ? fixed_bytes_ : input_.ConsumeIntegralInRange<DWORD>(0, 600);
    auto* const buffer = reinterpret_cast<Unit*>(room_.Text(bytes));
    Unit* const end = buffer + bytes / sizeof(Unit);
    length_ = bytes;
    buffers_.emplace_back([=] { return std::find(buffer, end, Unit{0}) != end; });
    return buffer;
  }
  char* Memory(char* /*type*/) { return Buffer<char>(); }
  WCHAR* Memory(WCHAR* /*type*/) { return Buffer<WCHAR>(); }

  const char* Memory(const char* /*type*/) {
    const std::string text = TakeBytes(input_, 300);
    char* const copy = room_.Text(static_cast<DWORD>(text.size() + 1));
    std::copy_n(text.c_str(), text.size() + 1, copy);
    return copy;
  }
  const WCHAR* Memory(const WCHAR* /*type*/) {
    const auto high = input_.ConsumeIntegral<std::uint8_t>();  // of every unit
    std::u16string text;
    for (const char unit : TakeBytes(input_, 600)) {
      text += static_cast<char16_t>(high << 8 | static_cast<unsigned char>(unit));
    }
    WCHAR* const copy = room_.WideText(static_cast<DWORD>(2 * text.size() + 2));
    std::copy_n(text.c_str(), text.size() + 1, copy);
    return copy;
  }

  DWORD* Memory(DWORD* /*type*/) { return room_.InOut(length_ ? *length_ : Number()); }
  LONG* Memory(LONG* /*type*/) { return reinterpret_cast<LONG*>(room_.InOut(Number())); }
  PALComPortPower* Memory(const PALComPortPower* /*type*/) {
    return reinterpret_cast<PALComPortPower*>(room_.Text(sizeof(PALComPortPower)));
  }

  FuzzedDataProvider& input_;
  Room& room_;
  DWORD fixed_bytes_;
  std::optional<DWORD> length_;  // of the buffer
  std::vector<std::function<bool()>> buffers_;
};

template <class Result, class... Types>
DWORD CallWith(const sim::Export<Result(Types...)>& function, std::string_view name,
               FuzzedDataProvider& input, Room& room) {
  constexpr bool kTellsSize = (kIsBuffer<Types> || ...) && (std::is_same_v<Types, DWORD*> || ...);
  DWORD fixed_bytes = kTellsSize ? 0 : PAL_IDENTITY_FIXED_LENGTH;
  if (name == "PALKEYGetButtonName") fixed_bytes = PAL_KEY_BUTTON_NAME_LENGTH;
  Arguments arguments(input, room, fixed_bytes);
  const std::tuple<Types...> taken{arguments.Take<Types>()...};
  const auto result = static_cast<DWORD>(std::apply(function, taken));
  Require(result != 0 || arguments.TextsEnd(), "gives a text without an end", name);
  return result;
}

struct Target {
  const char* name;
  DWORD (*call)(const sim::Exports& exports, FuzzedDataProvider& input, Room& room);
};

constexpr std::array kTargets{
#define PAL_EXPORT(name)                                                                 \
  Target{#name, [](const sim::Exports& exports, FuzzedDataProvider& input, Room& room) { \
           return CallWith(exports.name, #name, input, room);                            \
         }},
#include "exports.inc"
#undef PAL_EXPORT
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr int kMostCalls = 8;
  FuzzedDataProvider input(data, size);
  FuzzedDevice fuzzed;
  constexpr std::size_t kMostArrangements = 3;
  static_cast<void>(fuzzed.TakeRows(input, kMostArrangements));
  for (int call = 0; call < kMostCalls && input.remaining_bytes() > 0; ++call) {
    const auto index = input.ConsumeIntegralInRange<std::size_t>(0, kTargets.size());
    if (index == kTargets.size()) {
      fuzzed.device().Advance(input.ConsumeIntegralInRange<std::uint32_t>(1, 30000));
      continue;
    }
    const Target& target = kTargets[index];
    const bool goes_on = fuzzed.Call(target.name, [&](const sim::Exports& exports, Room& room) {
      return target.call(exports, input, room);
    });
    if (!goes_on) break;
  }
  fuzzed.Finish();
  return 0;
}
