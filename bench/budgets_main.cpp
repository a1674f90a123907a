// Makes the calls whose instructions bench/budgets.py counts: every export as the tests call it, on
// the DLL for the handheld under qemu-arm. It prints a line for each call: the export's name, a
// tab, and the count, which comes from the plugin in image_instructions.c.
#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>

#include "tests/support/export_rows.h"

namespace {

constexpr long kMark = 0x1000;  // a system call that Linux does not have and the plugin sees

template <typename Body>
void Count(const std::string& name, const Body& body) {
  fmt::print("{}\t", name);
  std::fflush(stdout);
  syscall(kMark, 1);
  body();
  syscall(kMark, 0);
}

// Each in a process of its own that has not made the call yet.
void MeasureExport(const ExportRow& row) {
  sim::Device device;
  ArrangeFor(row, device);
  sim::Process process(device);
  if (row.before) row.before(process);
  Room room;
  Count(row.name, [&] { (void)row.run(process.exports(), room); });
  if (row.after) row.after(process);
}

// The one export that does not come back.
void MeasureRestart() {
  sim::Device device;
  const sim::Process process(device);
  Count("PALBOOT_BootTerminal", [&] {
    try {
      (void)process.exports().PALBOOT_BootTerminal('1');
    } catch (const sim::ProcessKilled&) {
    }
  });
}

void MeasureEntry() {
  sim::Device device;
  ArrangeFor(ExportRows().front(), device);
  std::unique_ptr<sim::Process> process;
  Count("attach", [&] { process = std::make_unique<sim::Process>(device); });
  Count("detach", [&] { process.reset(); });
}

}  // namespace

int main() {
  // The DLL is loaded once: what a process leaves serves the next one.
  MeasureEntry();
  MeasureRestart();
  for (const ExportRow& row : ExportRows()) MeasureExport(row);
  return 0;
}
