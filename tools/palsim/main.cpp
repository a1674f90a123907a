// palsim: runs the library on a simulated device that lives in a folder.
#include "tools/palsim/command_line.h"
#include "tools/palsim/usage_error.h"
#include "tools/streams.h"

int main(int argc, char** argv) {
  try {
    return tools::CheckedOutput("palsim", [&] { return palsim::CommandLine().Run(argc, argv); });
  } catch (const palsim::UsageError& error) {
    tools::PrintError("palsim: {}\n", error.what());
    return palsim::kUsage;
  } catch (const std::exception& error) {
    tools::PrintError("palsim: {}\n", error.what());
    return palsim::kFailure;
  }
}
