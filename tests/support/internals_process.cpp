#include "tests/support/internals_process.h"

InternalsProcess::InternalsProcess(sim::Device& device, std::string name)
    : sim::Process(device, std::move(name), BINARY_DIR "/DVLORQPAL_internals.so"),
      internals_(reinterpret_cast<decltype(&GetInternals)>(Symbol("GetInternals"))()) {}
