// SVG and HTML text, piece by piece.
#ifndef TOOLS_PALSIM_TIMELINE_SVG_H_
#define TOOLS_PALSIM_TIMELINE_SVG_H_

#include <string>
#include <string_view>

namespace palsim {

// Replaces the characters that have a meaning in HTML: &, <, > and quotes.
[[nodiscard]] std::string EscapeHtml(std::string_view text);
// About how wide a text of the chart is, in its units.
[[nodiscard]] double TextWidth(std::string_view text);

class Svg {
 public:
  // A title is what shows when the pointer stays over the shape; it may be empty.
  void Rectangle(double x, double y, double width, double height, std::string_view classes,
                 std::string_view title = {});
  void Line(double x1, double y1, double x2, double y2, std::string_view classes);
  void Path(std::string_view data, std::string_view classes);
  void Text(double x, double y, std::string_view text, std::string_view classes,
            std::string_view title = {});
  // What is added until EndLink is a link to the element with the id `place`. The link has the id
  // `id`, so that others can lead to it.
  void BeginLink(std::string_view place, std::string_view id);
  void EndLink();
  // The whole element.
  [[nodiscard]] std::string Element(double width, double height, std::string_view classes,
                                    std::string_view label) const;
  // The whole element without a height of its own, for decoration.
  [[nodiscard]] std::string Backdrop(double width, std::string_view classes) const;

 private:
  std::string body_;
};

}  // namespace palsim

#endif  // TOOLS_PALSIM_TIMELINE_SVG_H_
