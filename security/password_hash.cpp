#include "security/password_hash.h"

#include "frame/trace.h"
#include "frame/unique_handle.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kImageCapturePolicy};

struct ProviderTraits {
  using Value = HCRYPTPROV;
  static bool IsValid(Value provider) { return provider != 0; }
  static void Close(Value provider) { CryptReleaseContext(provider, 0); }
};
struct HashTraits {
  using Value = HCRYPTHASH;
  static bool IsValid(Value hash) { return hash != 0; }
  static void Close(Value hash) { CryptDestroyHash(hash); }
};
using UniqueProvider = UniqueHandle<ProviderTraits>;
using UniqueHash = UniqueHandle<HashTraits>;

// Empty on failure; the last error says why.
UniqueProvider Acquire(DWORD flags) {
  HCRYPTPROV provider = 0;
  const bool is_acquired =
      CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_FULL, flags) != FALSE;
  return UniqueProvider(is_acquired ? provider : 0);
}

// Where the key set is missing it is created, but only the next check uses it: on purpose.
UniqueProvider AcquireProvider() {
  UniqueProvider provider = Acquire(0);
  if (provider) return provider;
  const DWORD error = GetLastError();
  if (error != static_cast<DWORD>(NTE_BAD_KEYSET)) return {};
  kTrace.Error("Error during CryptAcquireContext. flag:NULL, win32err:0x%x", error);
  if (!Acquire(CRYPT_NEWKEYSET)) {
    kTrace.Error("Error during CryptAcquireContext. flag: CRYPT_NEWKEYSET, win32err:0x%x",
                 GetLastError());
  }
  return {};
}

UniqueHash CreateHash(HCRYPTPROV provider) {
  HCRYPTHASH hash = 0;
  if (CryptCreateHash(provider, CALG_SHA1, 0, 0, &hash) == FALSE) {
    kTrace.Error("Error %x during CryptCreateHash!", GetLastError());
    return {};
  }
  return UniqueHash(hash);
}

bool Add(HCRYPTHASH hash, std::span<const BYTE> data, TraceSource::Format<> failure) {
  if (CryptHashData(hash, data.data(), static_cast<DWORD>(data.size()), 0) != FALSE) return true;
  kTrace.Error(failure);
  return false;
}

bool GetValue(HCRYPTHASH hash, SecretBytes& value) {
  DWORD size = 0;
  DWORD bytes = sizeof(size);
  if (CryptGetHashParam(hash, HP_HASHSIZE, reinterpret_cast<BYTE*>(&size), &bytes, 0) == FALSE) {
    kTrace.Error("CryptGetHashParam failed to get size.");
    return false;
  }
  if (!value.Allocate(size)) {
    kTrace.Error("Memory allocation failed.");
    return false;
  }
  if (CryptGetHashParam(hash, HP_HASHVAL, value.data(), &size, 0) == FALSE) {
    kTrace.Error("CryptGetHashParam failed to get hash value.");
    return false;
  }
  value.Shorten(size);
  return true;
}

std::span<const BYTE> BytesOf(WideText text) {
  return {reinterpret_cast<const BYTE*>(text.data()), text.size() * sizeof(WCHAR)};
}

}  // namespace

bool HashPassword(std::span<const BYTE> salt, WideText password, SecretBytes& hash) {
  const UniqueProvider provider = AcquireProvider();
  if (!provider) return false;
  const UniqueHash handle = CreateHash(provider.get());
  return handle && Add(handle.get(), salt, "Error during CryptHashData on salt.") &&
         Add(handle.get(), BytesOf(password), "Error during CryptHashData on password.") &&
         GetValue(handle.get(), hash);
}

bool AreEqualInConstantTime(std::span<const BYTE> left, std::span<const BYTE> right) {
  if (left.size() != right.size()) return false;
  // Volatile: the compiler must not leave the loop at the first difference.
  volatile BYTE difference = 0;
  for (size_t at = 0; at < left.size(); ++at) {
    difference = static_cast<BYTE>(difference | (left[at] ^ right[at]));
  }
  return difference == 0;
}

}  // namespace pal
