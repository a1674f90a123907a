#include "tools/palsim/timeline/page.h"

#include <fmt/format.h>

#include "tools/palsim/names.h"
#include "tools/palsim/scenario/values.h"
#include "tools/palsim/timeline/chart.h"
#include "tools/palsim/timeline/journal_text.h"
#include "tools/palsim/timeline/page_style.h"
#include "tools/palsim/timeline/svg.h"
#include "tools/palsim/timeline/text.h"

namespace palsim {
namespace {

std::string Paragraph(std::string_view classes, std::string_view text) {
  return text.empty() ? std::string()
                      : fmt::format("<p class=\"{}\">{}</p>\n", classes, EscapeHtml(text));
}

bool HasFailed(const sim::JournalEntry& entry) {
  if (entry.effect == sim::Effect::kExpect) return !ExpectationIn(entry.text).held;
  const std::size_t equals = entry.text.rfind(") = ");
  return entry.effect == sim::Effect::kCall && equals != std::string::npos &&
         IsFailure(std::string_view(entry.text).substr(equals + 4));
}

std::string EntryRow(const Timeline& timeline, std::size_t index) {
  const sim::JournalEntry& entry = timeline.run.entries[index];
  return fmt::format(
      "<tr id=\"e{}\"><td class=\"time\">{}</td><td class=\"who {}\"><i></i>{}</td>"
      "<td class=\"kind\">{}</td><td class=\"what{}\">{}</td></tr>\n",
      index, MomentText(entry.time_ms), ProcessColour(timeline, entry.process_id),
      EscapeHtml(timeline.Actor(entry)), sim::EffectName(entry.effect),
      HasFailed(entry) ? " failed" : "", EscapeHtml(ReadableText(entry)));
}

// Each with links to its moment; the mark in the chart leads here.
std::string ExpectationItems(const Timeline& timeline, bool held) {
  std::string items;
  for (const Expectation& each : timeline.expectations) {
    if (each.held != held) continue;
    items += fmt::format(
        "<li id=\"x{0}\" class=\"{1}\">{2}{3} (<a href=\"#{4}\">{5} in the chart</a>, "
        "<a href=\"#e{0}\">in the journal</a>)</li>\n",
        each.entry, held ? "held" : "failed", held ? kHeldMark : kFailedMark, EscapeHtml(each.text),
        each.MarkId(), MomentText(each.time));
  }
  return items.empty() ? items : "<ul class=\"expected\">\n" + items + "</ul>\n";
}

std::string Expectations(const Timeline& timeline) {
  if (timeline.expectations.empty()) return {};
  const std::string held = ExpectationItems(timeline, true);
  std::string section = "<h2>What was expected</h2>\n" + ExpectationItems(timeline, false);
  if (held.empty()) return section;
  return section + "<details><summary>" + std::string(kHeldMark) + "what held</summary>\n" + held +
         "</details>\n";
}

std::string FoldedRow(const std::vector<const sim::JournalEntry*>& lines) {
  if (lines.empty()) return {};
  std::string folded;
  for (const sim::JournalEntry* line : lines) {
    folded += fmt::format("<div>{} {}: {}</div>\n", MomentText(line->time_ms),
                          CategoryText(line->category), EscapeHtml(line->text));
  }
  return fmt::format(
      "<tr><td class=\"time\">{}</td><td></td><td class=\"kind\">trace</td><td class=\"what\">"
      "<details><summary>{} line{} in the event log</summary>\n{}</details></td></tr>\n",
      MomentText(lines.front()->time_ms), lines.size(), lines.size() == 1 ? "" : "s", folded);
}

std::string Table(const Timeline& timeline) {
  std::string rows;
  std::vector<const sim::JournalEntry*> folded;
  for (std::size_t index = 0; index < timeline.run.entries.size(); ++index) {
    const sim::JournalEntry& entry = timeline.run.entries[index];
    if (entry.effect == sim::Effect::kTrace) {
      folded.push_back(&entry);
      continue;
    }
    rows += FoldedRow(folded) + EntryRow(timeline, index);
    folded.clear();
  }
  rows += FoldedRow(folded);
  return "<div class=\"table\"><table><thead><tr><th>time</th><th>process</th><th>effect</th>"
         "<th>what</th></tr></thead><tbody>\n" +
         rows + "</tbody></table></div>\n";
}

}  // namespace

std::string TimelinePage(const Timeline& timeline) {
  std::string page = fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>{0}</title>\n<style>{1}</style></head>\n<body><main>\n{2}<h1>{0}</h1>\n",
      EscapeHtml(timeline.run.title), kPageStyle, kPagePatterns);
  for (const std::string& about : timeline.run.about) page += Paragraph("about", about);
  page += Paragraph("device", "Played on a simulated " + timeline.run.device);
  if (const std::string verdict = timeline.Verdict(); !verdict.empty()) {
    page += fmt::format("<p class=\"verdict{}\">{}{}</p>\n", timeline.Failed() ? " failed" : "",
                        timeline.Failed() ? kFailedMark : kHeldMark, verdict);
  }
  page += ChartHtml(timeline) + Expectations(timeline);
  page += "<details open><summary><h2>The journal</h2></summary>\n" + Table(timeline) +
          "</details></main></body></html>\n";
  return page;
}

std::string TimelinePicture(const Timeline& timeline) {
  return ChartPicture(timeline,
                      fmt::format("<title>{}</title>\n<style>{}</style>\n{}",
                                  EscapeHtml(timeline.run.title), kPageStyle, kPagePatterns));
}

}  // namespace palsim
