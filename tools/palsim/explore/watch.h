// Watches what is played on a stage, and asks the properties about it.
#ifndef TOOLS_PALSIM_EXPLORE_WATCH_H_
#define TOOLS_PALSIM_EXPLORE_WATCH_H_

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/palsim/explore/property.h"
#include "tools/palsim/explore/scene.h"

namespace palsim {

struct Violation {
  std::string_view property;
  std::string_view sentence;
  std::string how;
};

class Watch {
 public:
  // `rows`: which properties.
  Watch(sim::Device& device, std::span<const PropertyRow> rows);

  // A call from its begin to its end. It is known by the place that the begin gives.
  using Place = std::list<WatchedCall>::iterator;
  Place CallBegins(const sim::Process& process, std::size_t export_index,
                   const std::vector<std::string>& arguments);
  // `outcome`: nullptr where its process ended in it.
  void CallEnds(Place place, const CallOutcome* outcome);
  // A program of one's own, whose calls are not watched one by one.
  void ProgramBegins();
  void ProgramEnds();
  // Something else happens on the device: the calls under way are no longer alone.
  void Disturb();
  // The same, and it has changed the device.
  void DeviceChanged();
  void ProcessEnds();
  void RestartBegins();
  void StatementEnds();

  // The first one.
  [[nodiscard]] const std::optional<Violation>& violation() const { return violation_; }
  // How often the condition of each row was met.
  [[nodiscard]] std::vector<std::uint64_t> met() const;
  [[nodiscard]] std::uint64_t calls() const { return calls_; }

 private:
  template <class Ask>
  void AskAll(const Ask& ask);

  Scene scene_;
  std::span<const PropertyRow> rows_;
  std::vector<std::unique_ptr<Property>> properties_;
  std::list<WatchedCall> calls_under_way_;
  std::optional<Violation> violation_;
  std::uint64_t calls_ = 0;
  std::uint64_t seen_writes_ = 0;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_WATCH_H_
