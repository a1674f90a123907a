// The scan engine: which one it is, as the library tells it, and how it stands.
#include <fmt/core.h>

#include "platform/sim/exports.h"
#include "platform/sim/text.h"
#include "sysinfo/options/device_names.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/engine_parts.h"
#include "tools/palsim/names.h"
#include "tools/palsim/session.h"
#include "tools/streams.h"

namespace palsim {
namespace {

std::string EngineText(sim::Process& process) {
  DWORD type = 0;
  DWORD s6_installed = 0;
  const HRESULT result = process.exports().PALMFGOpt_InternalDeviceType(&type, &s6_installed);
  if (result < 0) return ResultText(result);
  if (type >= pal::kDeviceNames.size()) return fmt::format("internal device type {}", type);
  return fmt::format("{} (internal device type {})", sim::ToUtf8(pal::kDeviceNames[type]), type);
}

}  // namespace

int ShowScanEngine(Session& session) {
  const sim::ScanDriver* driver = sim::FindScanDriver(session.device().hardware());
  if (driver == nullptr) {
    tools::PrintError("palsim: the device has no scan engine; [scanner] in device.toml fits one\n");
    return kFailure;
  }
  fmt::print("{:<11}{}\n", "Engine", EngineText(session.process()));
  for (const EnginePart& part : kEngineParts) {
    fmt::print("{:<11}{}\n", part.label, part.StateIn(driver->state()));
  }
  return kSuccess;
}

}  // namespace palsim
