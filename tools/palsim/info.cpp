// The device's identity card, read through the library's exports alone.
#include <fmt/core.h>

#include <algorithm>
#include <array>

#include "platform/sim/exports.h"
#include "platform/sim/text.h"
#include "tools/palsim/commands.h"
#include "tools/palsim/names.h"
#include "tools/palsim/session.h"

namespace palsim {
namespace {

struct Detail {
  std::string_view label;
  DWORD id;
};

constexpr std::array kDetails{
    Detail{"Model", PAL_DETAIL_MODEL},
    Detail{"Display model", PAL_DETAIL_DISPLAY_MODEL},
    Detail{"Firmware", PAL_DETAIL_FIRMWARE_VERSION},
    Detail{"Serial number", PAL_DETAIL_SERIAL_NUMBER},
    Detail{"Ethernet address", PAL_DETAIL_ETHERNET_ADDRESS},
    Detail{"Operating system", PAL_DETAIL_OS},
    Detail{"Operating system version", PAL_DETAIL_OS_VERSION},
    Detail{"Hardware configuration", PAL_DETAIL_HARDWARE_CONFIGURATION},
    Detail{"Factory date 1", PAL_DETAIL_FACTORY_DATE_1},
    Detail{"Factory date 2", PAL_DETAIL_FACTORY_DATE_2},
    Detail{"Qualified serial number", PAL_DETAIL_QUALIFIED_SERIAL_NUMBER},
};

// The detail's text, or the code with which it failed. Dates and addresses that cannot be read are
// empty texts.
std::string DetailText(sim::Process& process, DWORD id) {
  const auto& get = process.exports().PALSysinfo_GetDeviceDetailW;
  DWORD bytes = 0;
  HRESULT result = get(id, nullptr, &bytes);
  std::u16string text(bytes / sizeof(WCHAR) + 1, u'\0');
  if (result >= 0) result = get(id, text.data(), &bytes);
  if (result < 0) return ResultText(result);
  text.resize(std::min(text.find(u'\0'), text.size()));
  return text.empty() ? "(empty)" : sim::Escape(sim::ToUtf8(text));
}

}  // namespace

int ShowInfo(Session& session) {
  for (const Detail& detail : kDetails) {
    fmt::print("{:<26}{}\n", detail.label, DetailText(session.process(), detail.id));
  }
  const HRESULT own = session.process().exports().PALSysinfo_IsDravonelDevice();
  fmt::print("{:<26}{}\n", "The maker's own",
             own >= 0 ? "yes" : fmt::format("no ({})", ResultText(own)));
  return kSuccess;
}

}  // namespace palsim
