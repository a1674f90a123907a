// The results of each export as the build has read them from the headers.
#include <fmt/format.h>

#include <algorithm>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"
#include "tools/palsim/names.h"

namespace palsim {
namespace {

std::vector<std::vector<ResultName>> MakeAnswers() {
  std::vector<std::vector<ResultName>> answers;
  for (const std::string_view name : ExportNames()) answers.push_back(AnswersOf(name));
  return answers;
}

bool IsListed(const WatchedCall& call) {
  static const std::vector<std::vector<ResultName>> answers = MakeAnswers();
  return std::ranges::any_of(answers[call.export_index], [&](const ResultName& answer) {
    return (call.outcome->code & answer.mask) == answer.code;
  });
}

// Whether a modem's or a GPS receiver's answer is whatever number the registry holds.
bool IsEquipmentState(Scene& scene, const WatchedCall& call) {
  return call.name.starts_with("PALDevCap_Enabled") &&
         scene.Dword(R"(HKLM\Software\Microsoft\RIL)", "LastEquipmentState") == call.outcome->code;
}

class Listed : public Property {
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (!call.returned()) return;
    Met();
    if (IsListed(call) || IsEquipmentState(scene, call)) return;
    Violated(fmt::format("{} answers {}", call.name,
                         ResultText(static_cast<HRESULT>(call.outcome->code))));
  }
};

}  // namespace

std::unique_ptr<Property> AnswersAreListed() {
  return std::make_unique<Listed>();
}

}  // namespace palsim
