// The IP helper's table of network interfaces.
#include <algorithm>

#include "platform/sim/coredll/call.h"

namespace sim {
namespace {

constexpr LONG kNoSuchInterface = 13;  // for an index that no interface has

MIB_IFROW RowOf(const NetworkInterface& network_interface) {
  MIB_IFROW row{};
  row.dwIndex = network_interface.index;
  row.dwType = network_interface.type;
  const std::string& description = network_interface.description;
  row.dwDescrLen = static_cast<DWORD>(std::min(description.size(), sizeof(row.bDescr)));
  std::copy_n(description.begin(), row.dwDescrLen, row.bDescr);
  return row;
}

}  // namespace
}  // namespace sim

// Both return their error as the registry's calls do.
DWORD GetNumberOfInterfaces(LPDWORD count) {
  sim::Call call(sim::CallId::GetNumberOfInterfaces);
  if (call.fault() != 0) return static_cast<DWORD>(call.Fail(call.fault()));
  if (count == nullptr) return static_cast<DWORD>(call.Fail(ERROR_INVALID_PARAMETER));
  *count = static_cast<DWORD>(call.kernel().hardware.interfaces.size());
  return static_cast<DWORD>(call.Answer(*count));
}

DWORD GetIfEntry(MIB_IFROW* row) {
  sim::Call call(sim::CallId::GetIfEntry);
  if (call.fault() != 0) return static_cast<DWORD>(call.Fail(call.fault()));
  if (row == nullptr) return static_cast<DWORD>(call.Fail(ERROR_INVALID_PARAMETER));
  const auto& interfaces = call.kernel().hardware.interfaces;
  const auto found = std::ranges::find(interfaces, row->dwIndex, &sim::NetworkInterface::index);
  if (found == interfaces.end()) return static_cast<DWORD>(call.Fail(sim::kNoSuchInterface));
  *row = sim::RowOf(*found);
  return static_cast<DWORD>(call.Answer(*row));
}
