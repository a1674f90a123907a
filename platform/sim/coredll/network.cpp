// The IP helper's list of network adapters.
#include <algorithm>

#include "platform/sim/coredll/call.h"

namespace sim {
namespace {

constexpr DWORD kNoData = 232;

IP_ADAPTER_INFO RecordOf(const NetworkAdapter& adapter) {
  IP_ADAPTER_INFO record{};
  adapter.name.copy(record.AdapterName, sizeof(record.AdapterName) - 1);
  record.AddressLength =
      static_cast<UINT>(std::min(adapter.address.size(), sizeof(record.Address)));
  std::copy_n(adapter.address.begin(), record.AddressLength, record.Address);
  record.Type = adapter.type;
  return record;
}

}  // namespace
}  // namespace sim

// Returns the error, as the registry's calls do. A call without a buffer gives the size needed.
DWORD GetAdaptersInfo(IP_ADAPTER_INFO* adapters, ULONG* bytes) {
  sim::Call call(sim::CallId::GetAdaptersInfo);
  if (call.fault() != 0) return static_cast<DWORD>(call.Fail(call.fault()));
  if (bytes == nullptr) return static_cast<DWORD>(call.Fail(ERROR_INVALID_PARAMETER));
  const auto& known = call.kernel().hardware.adapters;
  if (known.empty()) return sim::kNoData;
  const auto needed = static_cast<ULONG>(known.size() * sizeof(IP_ADAPTER_INFO));
  if (adapters == nullptr || *bytes < needed) {
    *bytes = needed;
    return ERROR_BUFFER_OVERFLOW;
  }
  for (std::size_t index = 0; index < known.size(); ++index) {
    adapters[index] = sim::RecordOf(known[index]);
    const LONG error = call.Answer(adapters[index]);
    if (error != ERROR_SUCCESS) return static_cast<DWORD>(call.Fail(error));
    adapters[index].Next = nullptr;
    if (index > 0) adapters[index - 1].Next = &adapters[index];
  }
  return ERROR_SUCCESS;
}
