#include <algorithm>
#include <memory>
#include <new>
#include <span>

#include "frame/text.h"
#include "sysinfo/identity/answer_text.h"
#include "sysinfo/identity/fallbacks.h"
#include "sysinfo/identity/identity_cache.h"

namespace pal {
namespace {

constexpr UINT kEthernet = 6;
constexpr std::string_view kUsbAdapter = "RNDISFN1";
constexpr size_t kAddressBytes = 6;
constexpr std::string_view kNoAddress = "000000000000";

using AddressText = std::array<char, 2 * kAddressBytes>;

constexpr size_t kCacheBytes = 16;
constinit IdentityCache<kCacheBytes> cache;

AddressText CopyOf(std::string_view address) {
  AddressText text{};
  std::copy_n(address.begin(), std::min(address.size(), text.size()), text.begin());
  return text;
}

bool IsWired(const IP_ADAPTER_INFO& adapter) {
  const std::string_view name(adapter.AdapterName, Length<char>(adapter.AdapterName));
  return adapter.Type == kEthernet && name != kUsbAdapter;
}

AddressText TextOfFirstWired(const IP_ADAPTER_INFO* adapter) {
  while (adapter != nullptr && !IsWired(*adapter)) adapter = adapter->Next;
  AddressText text = CopyOf(kNoAddress);
  if (adapter == nullptr) return text;
  char* end = text.data();
  for (const BYTE byte : std::span(adapter->Address).first(kAddressBytes)) {
    end = PutHexadecimal(end, byte, kLowerCaseDigits);
  }
  return text;
}

}  // namespace

std::array<char, 12> AdapterAddress() {
  char copy[kCacheBytes];
  if (const std::string_view cached = cache.Read(copy); !cached.empty()) return CopyOf(cached);
  AddressText text = CopyOf(kNoAddress);
  ULONG bytes = 0;
  if (GetAdaptersInfo(nullptr, &bytes) != ERROR_BUFFER_OVERFLOW) return text;
  if (bytes < sizeof(IP_ADAPTER_INFO)) return text;
  const std::unique_ptr<BYTE[]> list(new (std::nothrow_t{}) BYTE[bytes]);
  if (list == nullptr) return text;
  auto* const first = reinterpret_cast<IP_ADAPTER_INFO*>(list.get());
  if (GetAdaptersInfo(first, &bytes) != ERROR_SUCCESS) return text;
  text = TextOfFirstWired(first);
  cache.Fill({text.data(), text.size()});
  return text;
}

}  // namespace pal
