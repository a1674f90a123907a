#include "platform/sim/journal.h"

#include <gtest/gtest.h>

namespace {

using sim::Effect;
using sim::JournalEntry;

TEST(Journal, LinesAreReadBackAsTheyWere) {
  EXPECT_EQ(sim::ToLine({0, 1, 1, Effect::kTrace, 0x43F00000, "Entry ConfigStoreRegUpdate()"}),
            "     0.000 p1 t1 trace 0x43F00000 Entry ConfigStoreRegUpdate()");
  EXPECT_EQ(sim::ToLine({2005, 12, 3, Effect::kRegistry, 0, "HKEY_LOCAL_MACHINE\\Key"}),
            "     2.005 p12 t3 registry HKEY_LOCAL_MACHINE\\Key");
  for (const JournalEntry& entry : {JournalEntry{UINT64_MAX, UINT32_MAX, 0, Effect::kDebug, 0, ""},
                                    JournalEntry{1, 2, 3, Effect::kTrace, 0xFFFFFFFF, " two  "}}) {
    const std::optional<JournalEntry> back = sim::FromLine(sim::ToLine(entry));
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(back->time_ms, entry.time_ms);
    EXPECT_EQ(back->process_id, entry.process_id);
    EXPECT_EQ(back->thread_id, entry.thread_id);
    EXPECT_EQ(back->effect, entry.effect);
    EXPECT_EQ(back->category, entry.category);
    EXPECT_EQ(back->text, entry.text);
  }
}

TEST(Journal, WhatIsNoLineGivesNothing) {
  for (const char* line :
       {"", "   ", "1.00 p1 t1 file x", "1.0000 p1 t1 file x", "1.000 p1 t1", "1.000 p1 t1 ",
        "1.000 p1 t1 files x", "1.000 p-1 t1 file x", "1.000 p4294967296 t1 file x",
        "18446744073709551.616 p1 t1 file x", "1.000 p1 t1 trace x", "1.000 p1 t1 trace 0xG x",
        "1.000 p1 t1 trace 0x123456789 x", "1.000 t1 p1 file x", "1,000 p1 t1 file x"}) {
    EXPECT_FALSE(sim::FromLine(line).has_value()) << line;
  }
}

TEST(Journal, EscapesWhatDoesNotPrintAndLeavesPathsReadable) {
  EXPECT_EQ(sim::Escape("a\\b\r\n\x1B\xC3\xA9\xC2\x9B\xFF"),
            "a\\b\\r\\n\\x1B\xC3\xA9\\xC2\\x9B\\xFF");
}

}  // namespace
