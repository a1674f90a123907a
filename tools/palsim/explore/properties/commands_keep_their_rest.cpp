#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "tools/palsim/explore/properties/properties.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {
namespace {

constexpr std::array kCommands{R"(HKCR\tdyskin\Shell\Open\Command)",
                               R"(HKCR\cabfile\Shell\Open\Command)"};
constexpr std::size_t kProgramBytes = 14;  // seven UTF-16 characters

class Commands : public Property {
  using Command = std::optional<sim::RegistryValue>;

  void DeviceChanged(Scene& scene) override {
    seen_ = scene.writes();
    commands_ = Read(scene);
  }

  void StatementEnds(Scene& scene) override {
    if (scene.writes() == std::exchange(seen_, scene.writes())) return;
    const std::array<Command, 2> now = Read(scene);
    for (std::size_t at = 0; at < now.size(); ++at) {
      if (commands_.at(at)) Met();
      if (HasSameRest(commands_.at(at), now.at(at))) continue;
      Violated(fmt::format("{} has changed otherwise", kCommands.at(at)));
    }
    commands_ = now;
  }

  static bool HasSameRest(const Command& before, const Command& now) {
    if (before.has_value() != now.has_value()) return false;
    if (!before) return true;
    if (before->type != now->type || before->data.size() != now->data.size()) return false;
    const std::size_t kept = std::min(kProgramBytes, before->data.size());
    return std::equal(before->data.begin() + static_cast<std::ptrdiff_t>(kept), before->data.end(),
                      now->data.begin() + static_cast<std::ptrdiff_t>(kept));
  }

  static std::array<Command, 2> Read(Scene& scene) {
    std::array<Command, 2> commands;
    for (std::size_t at = 0; at < commands.size(); ++at) {
      const auto* const value = scene.registry().FindValue(kCommands.at(at), "");
      if (value != nullptr) commands.at(at) = *value;
    }
    return commands;
  }

  std::array<Command, 2> commands_;
  std::uint64_t seen_ = 0;
};

}  // namespace

std::unique_ptr<Property> CommandsKeepTheirRest() {
  return std::make_unique<Commands>();
}

}  // namespace palsim
