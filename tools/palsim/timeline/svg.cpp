#include "tools/palsim/timeline/svg.h"

#include <fmt/format.h>

#include <algorithm>

namespace palsim {
namespace {

std::string TitleElement(std::string_view title) {
  return title.empty() ? std::string() : fmt::format("<title>{}</title>", EscapeHtml(title));
}

}  // namespace

std::string EscapeHtml(std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

double TextWidth(std::string_view text) {
  constexpr double kCharacter = 7.7;  // at 12 px; capitals are many in names of calls
  const auto characters = std::ranges::count_if(
      text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; });
  return kCharacter * static_cast<double>(characters);
}

void Svg::Rectangle(double x, double y, double width, double height, std::string_view classes,
                    std::string_view title) {
  body_ += fmt::format(
      "<rect class=\"{}\" x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\" "
      "rx=\"3\">{}</rect>\n",
      classes, x, y, width, height, TitleElement(title));
}

void Svg::Line(double x1, double y1, double x2, double y2, std::string_view classes) {
  body_ +=
      fmt::format("<line class=\"{}\" x1=\"{:.1f}\" y1=\"{:.1f}\" x2=\"{:.1f}\" y2=\"{:.1f}\"/>\n",
                  classes, x1, y1, x2, y2);
}

void Svg::Path(std::string_view data, std::string_view classes) {
  body_ += fmt::format("<path class=\"{}\" d=\"{}\"/>\n", classes, data);
}

void Svg::Text(double x, double y, std::string_view text, std::string_view classes,
               std::string_view title) {
  body_ += fmt::format("<text class=\"{}\" x=\"{:.1f}\" y=\"{:.1f}\">{}{}</text>\n", classes, x, y,
                       EscapeHtml(text), TitleElement(title));
}

void Svg::BeginLink(std::string_view place, std::string_view id) {
  body_ += fmt::format("<a href=\"#{}\" id=\"{}\">", place, id);
}

void Svg::EndLink() {
  body_ += "</a>";
}

std::string Svg::Element(double width, double height, std::string_view classes,
                         std::string_view label) const {
  return fmt::format(
      "<svg class=\"{0}\" width=\"{1:.0f}\" height=\"{2:.0f}\" viewBox=\"0 0 {1:.0f} {2:.0f}\" "
      "role=\"img\" aria-label=\"{3}\">\n{4}</svg>\n",
      classes, width, height, EscapeHtml(label), body_);
}

std::string Svg::Backdrop(double width, std::string_view classes) const {
  return fmt::format("<svg class=\"{}\" width=\"{:.0f}\" aria-hidden=\"true\">\n{}</svg>\n",
                     classes, width, body_);
}

}  // namespace palsim
