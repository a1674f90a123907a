// The file in which a platform's answers stand, one line each:
//
//   palcheck: what it does not do
//   registry: order of keys = 0 zebra 0 ant 259 [chosen]
//   PALKEYGetType = 0x0 2
//   palcheck: done
//
// A name with a colon is that of a row, one without it that of an export. A program that did not
// come back from a question leaves the question as the last line, and no answer behind it.
#ifndef PLATFORM_CONFORMANCE_REPORT_H_
#define PLATFORM_CONFORMANCE_REPORT_H_

#include "platform/wince.h"

namespace conformance {

inline constexpr const WCHAR* kReportPath = TEXT("\\palcheck.txt");

// The first and the last line; what separates a name from its answer, and what marks a chosen fact.
inline constexpr char kHeading[] =
    "palcheck: does not restart the device, makes no sound above the lowest volume, and leaves "
    "nothing behind but this file";
inline constexpr char kEnd[] = "palcheck: done";
inline constexpr char kEquals[] = " = ";
inline constexpr char kChosenMark[] = " [chosen]";

// Puts every question to the platform, and calls every query of the library. False where the file
// cannot be made; nothing is asked then.
bool WriteReport();

}  // namespace conformance

#endif  // PLATFORM_CONFORMANCE_REPORT_H_
