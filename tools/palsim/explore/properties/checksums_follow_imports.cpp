#include <fmt/format.h>

#include <map>

#include "platform/sim/text.h"
#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

class Checksums : public Property {
  using Values = std::map<std::u16string, std::vector<std::uint8_t>>;

  void DeviceChanged(Scene& scene) override {
    seen_ = scene.writes();
    checksums_ = Read(scene);
    if (scene.running() == 0) imports_ = Imports(scene);
  }

  // The call that imports is still under way when its checksum is stored.
  void CallEnds(Scene& scene, const WatchedCall& call) override {
    if (call.name != "PALREG_LoadRegistry") return;
    const Values now = Read(scene);
    if (now == checksums_) return;
    Met();
    const unsigned imports = Imports(scene);
    if (imports == imports_) Violated("a checksum has changed without an import");
    if (call.returned() && call.outcome->code != 0) {
      Violated(fmt::format("the import of {} has failed", call.arguments->at(1)));
    }
    if (call.alone && Without(call, now) != Without(call, checksums_)) {
      Violated(fmt::format("the import of {} changes another's", call.arguments->at(1)));
    }
    checksums_ = now;
    imports_ = imports;
  }

  void StatementEnds(Scene& scene) override {
    if (scene.writes() == std::exchange(seen_, scene.writes()) || scene.running() > 0) return;
    if (Read(scene) != checksums_) Violated("a checksum has changed without its import");
  }

  static Values Without(const WatchedCall& call, const Values& values) {
    Values others;
    for (const auto& [name, data] : values) {
      if (!sim::EqualNoCase(name, sim::ToUtf16(call.arguments->at(1)))) others.emplace(name, data);
    }
    return others;
  }

  static unsigned Imports(Scene& scene) { return scene.device().calls("CreateProcessW"); }

  static Values Read(Scene& scene) {
    Values values;
    const auto key = scene.registry().Find(R"(HKLM\Software\Dravonel\REGCHKSUMS)");
    if (key == nullptr) return values;
    for (const sim::RegistryValue& value : key->values()) values.emplace(value.name, value.data);
    return values;
  }

  Values checksums_;
  unsigned imports_ = 0;
  std::uint64_t seen_ = 0;
};

}  // namespace

std::unique_ptr<Property> ChecksumsFollowImports() {
  return std::make_unique<Checksums>();
}

}  // namespace palsim
