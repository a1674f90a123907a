// The chart of a timeline: an axis with a lane for each thing that has a state over time.
#ifndef TOOLS_PALSIM_TIMELINE_CHART_H_
#define TOOLS_PALSIM_TIMELINE_CHART_H_

#include <string>
#include <vector>

#include "tools/palsim/timeline/svg.h"
#include "tools/palsim/timeline/time_scale.h"
#include "tools/palsim/timeline/timeline.h"

namespace palsim {

// How many classes p0, p1, ... the page has for processes; behind the last they begin anew.
constexpr std::size_t kProcessColours = 6;

class Chart {
 public:
  explicit Chart(const Timeline& timeline);
  // HTML: the lanes' names beside a box in which the plot scrolls.
  [[nodiscard]] std::string Html() const;

 private:
  struct Bar {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::string text;
    std::string classes;
    std::string title;
  };
  struct Placed {
    double from, to, text_at;
    bool has_text;
    std::size_t row;
  };

  void AddOutside();
  void AddProcesses();
  void AddMutexes();
  void AddSounds();
  void AddVolume();
  void AddGain();
  void AddVibrations();
  void AddLeds();
  void AddAxis();

  // Opens a lane; what is drawn then stands between top_ and the height.
  void BeginLane(const std::string& name, const std::string& kind, double height);
  void EndLane();
  void AddBars(const std::string& name, const std::string& kind, const std::vector<Bar>& bars);
  [[nodiscard]] std::vector<Placed> Place(const std::vector<Bar>& bars) const;
  [[nodiscard]] Placed Measure(const Bar& bar) const;
  void DrawBar(const Bar& bar, const Placed& placed);
  // A level as steps, `most` at the top of the lane.
  void AddSteps(const std::vector<Level>& levels, double most, const std::string& classes,
                std::string (*text)(std::uint32_t value));
  [[nodiscard]] std::string Colour(std::uint32_t process) const;

  const Timeline& timeline_;
  TimeScale scale_;
  double width_;
  double top_;
  double height_ = 0;  // of the present lane
  Svg back_;           // lines behind the lanes
  Svg plot_;
  std::string names_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_CHART_H_
