#include "tests/support/internals_process.h"

InternalsProcess::InternalsProcess(sim::Device& device, const std::string& name)
    : sim::Process(device, name, BINARY_DIR "/DVLORQPAL_internals.so"),
      internals_(reinterpret_cast<decltype(&GetInternals)>(Symbol("GetInternals"))()) {}
