// What every export does where the platform fails it or its process ends.
#include <algorithm>
#include <set>

#include "tests/support/device_test.h"
#include "tests/support/documented_results.h"
#include "tests/support/export_rows.h"

namespace {

class ExportRowTest : public ::testing::TestWithParam<std::size_t> {};

TEST_P(ExportRowTest, passes_untouched) {
  const ExportRow& row = ExportRows().at(GetParam());
  SCOPED_TRACE(row.title());
  sim::Device device;
  ArrangeFor(row, device);
  sim::Process process(device);
  if (row.before) row.before(process);
  Room room;
  const DWORD result = row.run(process.exports(), room);
  EXPECT_TRUE(ResultsByExport().at(row.name).Has(result)) << std::hex << result;
  if (row.after) row.after(process);
  process.End();
  EXPECT_TRUE(room.GuardsHold());
  EXPECT_EQ(device.misuse(), std::vector<std::string>());
}

INSTANTIATE_TEST_SUITE_P(Rows, ExportRowTest,
                         ::testing::Range<std::size_t>(0, ExportRows().size()));

TEST(ExportRows, every_export_but_the_restart_has_one) {
  std::set<std::string> left;
  for (const auto& [name, results] : ResultsByExport()) left.insert(name);
  for (const ExportRow& row : ExportRows()) left.erase(row.name);
  EXPECT_EQ(left, std::set<std::string>{"PALBOOT_BootTerminal"});
}

}  // namespace
