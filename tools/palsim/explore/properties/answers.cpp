// What calls answer: results that their headers list, with errors that there were, and nothing
// behind the room that a caller gave.
#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "platform/wince.h"
#include "tools/palsim/argument.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/names.h"

namespace palsim {
namespace {

// The results of an export as the build has read them from the headers.
const std::vector<ResultName>& ListedAnswers(const WatchedCall& call) {
  static const std::vector<std::vector<ResultName>> answers = [] {
    std::vector<std::vector<ResultName>> all;
    for (const std::string_view name : ExportNames()) all.push_back(AnswersOf(name));
    return all;
  }();
  return answers[call.export_index];
}

// Whether an export about the modem or the GPS receiver has answered the registry's
// LastEquipmentState, which may be any number.
bool IsEquipmentState(const Scene& scene, const WatchedCall& call) {
  return call.name.starts_with("PALDevCap_Enabled") &&
         scene.Dword(R"(HKLM\Software\Microsoft\RIL)", "LastEquipmentState") == call.outcome->code;
}

class AnswersAreListed : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (!call.returned()) return;
    Met();
    const bool is_listed = std::ranges::any_of(ListedAnswers(call), [&](const ResultName& answer) {
      return (call.outcome->code & answer.mask) == answer.code;
    });
    if (is_listed || IsEquipmentState(scene, call)) return;
    Violated(fmt::format("{} answers {}", call.name,
                         ResultText(static_cast<HRESULT>(call.outcome->code))));
  }
};

// These the library also gives of its own accord, where the header names them: for an argument, and
// for a text that does not fit the library's room.
constexpr auto kOwnErrors =
    std::to_array<std::uint32_t>({ERROR_INVALID_PARAMETER, ERROR_MORE_DATA});

bool IsOwnError(const WatchedCall& call, std::uint32_t error) {
  const auto names = [&](const ResultName& answer) {
    return answer.mask == 0xFFFFFFFF && answer.code == call.outcome->code;
  };
  return std::ranges::count(kOwnErrors, error) != 0 &&
         std::ranges::any_of(ListedAnswers(call), names);
}

class ErrorsAreOfCalls : public Property {
  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    constexpr std::uint32_t kWin32 = 0x8007;
    if (!call.returned() || call.outcome->code >> 16 != kWin32) return;
    const std::uint32_t error = call.outcome->code & 0xFFFF;
    if (IsOwnError(call, error)) return;
    Met();
    if (std::ranges::count(call.process->errors_of_call(), error) != 0) return;
    Violated(fmt::format("{} answers {}, and no platform call of it has failed so", call.name,
                         ResultText(static_cast<HRESULT>(call.outcome->code))));
  }
};

bool IsRoom(const Parameter& parameter) {
  constexpr auto kBuffers = std::to_array<std::string_view>({"char*", "WCHAR*", "BYTE*"});
  return std::ranges::count(kBuffers, parameter.type) != 0;
}

class RoomIsKept : public Property {
  void CallEnds(Scene& /*scene*/, const WatchedCall& call) override {
    if (!call.returned() || !HasRoom(call)) return;
    Met();
    if (!call.outcome->within_room) Violated(fmt::format("{} writes behind it", call.name));
  }

  static bool HasRoom(const WatchedCall& call) {
    const auto& parameters = FindDeclaration(call.name)->parameters;
    for (std::size_t at = 0; at < call.arguments->size(); ++at) {
      if (IsRoom(parameters.at(at)) && !IsNull(call.arguments->at(at))) return true;
    }
    return false;
  }
};

constexpr std::array kAnswerRows{
    PropertyRow{"answers-are-listed", "Every answer is one that the header lists for its export.",
                &Make<AnswersAreListed>},
    PropertyRow{"errors-are-of-calls",
                "A Win32 error in an answer is one that a platform call has given.",
                &Make<ErrorsAreOfCalls>},
    PropertyRow{"room-is-kept", "Nothing is written behind the room of a caller's buffer.",
                &Make<RoomIsKept>},
};

}  // namespace

std::span<const PropertyRow> AnswerProperties() {
  return kAnswerRows;
}

}  // namespace palsim
