#include "tests/support/internals_process.h"

#include "platform/sim/kernel/loaded_library.h"

InternalsProcess::InternalsProcess(sim::Device& device, const std::string& name)
    : sim::Process(device, name,
                   std::string(BINARY_DIR "/DVLORQPAL_internals") + sim::kLibraryExtension),
      internals_(reinterpret_cast<decltype(&GetInternals)>(Symbol("GetInternals"))()) {}
