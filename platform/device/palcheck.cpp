// palcheck.exe: started on a handheld, it writes to \palcheck.txt what the platform answers to the
// questions behind the simulated device, and what the library's queries give there.
#include "platform/conformance/report.h"

// The program's entry. The platform ends the process when it returns.
extern "C" int WINAPI WinMain(HINSTANCE /*program*/, HINSTANCE /*previous*/, WCHAR* /*command*/,
                              int /*show*/) {
  return conformance::WriteReport() ? 0 : 1;
}
