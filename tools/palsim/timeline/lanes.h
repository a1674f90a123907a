// The lanes of a chart below their axis, in parts that fold. Every lane is a picture of its own;
// all have the same time scale.
#ifndef TOOLS_PALSIM_TIMELINE_LANES_H_
#define TOOLS_PALSIM_TIMELINE_LANES_H_

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tools/palsim/timeline/svg.h"
#include "tools/palsim/timeline/time_scale.h"
#include "tools/palsim/timeline/timeline.h"

namespace palsim {

struct Bar {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::string text;
  std::string classes;
  std::string title;
  std::string link = {};  // the id of the element that it leads to; empty: no link
  std::string id = {};    // of the link itself
};

// What runs behind the bars of a process, from its start to its end.
struct Lifeline {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::string classes;
  bool killed = false;
};

// What shows under the pointer: "PALBEEPKeyClick() = S_OK", from when to when.
[[nodiscard]] std::string SpanTitle(std::string_view what, std::uint64_t begin, std::uint64_t end);

class Lanes {
 public:
  explicit Lanes(const Timeline& timeline);

  // What is added next belongs to a part of this title.
  void BeginPart(const std::string& title);
  void AddBars(const std::string& name, const std::string& kind, const std::vector<Bar>& bars,
               const Lifeline* life = nullptr);
  // A level as steps, `most` at the top of the lane.
  void AddSteps(const std::string& name, const std::string& kind, const std::vector<Level>& levels,
                double most, const std::string& classes, std::string (*text)(std::uint32_t value));
  // HTML: the axis, then the parts that have a lane.
  [[nodiscard]] std::string Html() const;
  // The same as one SVG element, with what `head` has before the lanes.
  [[nodiscard]] std::string Picture(std::string_view head) const;

 private:
  struct Lane {
    std::string name;
    std::string kind;
    double height = 0;
    Svg plot = {};
  };
  struct Part {
    std::string title;
    std::vector<Lane> lanes;
  };
  struct Placed {
    double from, to, text_at;
    bool has_text;
    std::size_t row;
  };

  [[nodiscard]] double X(std::uint64_t time_ms) const;
  [[nodiscard]] std::vector<Placed> Place(const std::vector<Bar>& bars);
  [[nodiscard]] Placed Measure(const Bar& bar) const;
  void DrawBar(Svg& plot, const Bar& bar, const Placed& placed, bool has_plate) const;
  void DrawLife(Svg& plot, const Lifeline& life) const;
  void DrawKilled(Svg& plot, const Lifeline& life) const;
  void DrawLevelTexts(Lane& lane, const std::vector<Level>& levels, double most,
                      std::string (*text)(std::uint32_t value));
  void AddAxis();
  void AddRestarts();
  [[nodiscard]] std::string PartHtml(const Part& part) const;
  [[nodiscard]] std::string LaneHtml(const Lane& lane, std::string_view classes) const;
  [[nodiscard]] std::string LanePicture(const Lane& lane, double y) const;
  // What is drawn up to here is not cut.
  void Reach(double x) { width_ = std::max(width_, x); }

  const Timeline& timeline_;
  TimeScale scale_;
  double width_;
  Svg back_;  // behind all lanes, over their whole height
  Lane axis_;
  std::vector<Part> parts_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_LANES_H_
