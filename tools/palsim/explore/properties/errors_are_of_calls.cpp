#include <fmt/format.h>

#include <algorithm>

#include "platform/wince.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/names.h"

namespace palsim {
namespace {

constexpr std::uint32_t kWin32 = 0x8007;

class OfCalls : public Property {
  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    if (!call.returned() || call.outcome->code >> 16 != kWin32) return;
    const std::uint32_t error = call.outcome->code & 0xFFFF;
    // E_INVALIDARG is no error of a call. A text without an end does not fit the library's room.
    if (error == ERROR_INVALID_PARAMETER || error == ERROR_MORE_DATA) return;
    Met();
    const std::vector<std::uint32_t>& given = call.process->errors_of_call();
    if (std::ranges::count(given, error) != 0) return;
    Violated(fmt::format("{} answers {}, and no platform call of it has failed so", call.name,
                         ResultText(static_cast<HRESULT>(call.outcome->code))));
  }
};

}  // namespace

std::unique_ptr<Property> ErrorsAreOfCalls() {
  return std::make_unique<OfCalls>();
}

}  // namespace palsim
