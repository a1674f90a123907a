// The part of CryptoAPI that SHA-1 needs: contexts for key sets, and hashes.
#include <fmt/format.h>

#include <algorithm>
#include <boost/endian/conversion.hpp>
#include <boost/uuid/detail/sha1.hpp>

#include "platform/sim/coredll/call.h"

namespace sim {
namespace {

// Key sets stand in the registry, so that a device keeps them from run to run.
constexpr std::string_view kKeySets = "HKEY_CURRENT_USER\\Comm\\Security\\Crypto\\UserKeys\\";
constexpr std::string_view kDefaultContainer = "Default";

constexpr LONG kBadAlgorithm = static_cast<LONG>(0x80090008);     // NTE_BAD_ALGID
constexpr LONG kBadFlags = static_cast<LONG>(0x80090009);         // NTE_BAD_FLAGS
constexpr LONG kBadType = static_cast<LONG>(0x8009000A);          // NTE_BAD_TYPE
constexpr LONG kBadHashState = static_cast<LONG>(0x8009000C);     // NTE_BAD_HASH_STATE
constexpr LONG kKeySetExists = static_cast<LONG>(0x8009000F);     // NTE_EXISTS
constexpr LONG kUnknownProvider = static_cast<LONG>(0x80090017);  // NTE_PROV_TYPE_NOT_DEF

struct CryptContext : Object {
  static constexpr ObjectKind kKind = ObjectKind::kCryptContext;
  CryptContext() : Object(kKind) {}
};

class CryptHash : public Object {
 public:
  static constexpr ObjectKind kKind = ObjectKind::kCryptHash;
  explicit CryptHash(const std::shared_ptr<CryptContext>& context)
      : Object(kKind), context_(context) {}

  // A hash must not outlive its context.
  [[nodiscard]] bool is_orphan() const { return context_.expired(); }
  // After the first request for its value, a hash takes no more data.
  [[nodiscard]] bool is_finished() const { return is_finished_; }
  void Add(const BYTE* data, DWORD bytes) { digest_.process_bytes(data, bytes); }
  const BYTE* Finish() {
    if (!is_finished_) {
      digest_.get_digest(value_);
      for (unsigned& word : value_) boost::endian::native_to_big_inplace(word);
      is_finished_ = true;
    }
    return reinterpret_cast<const BYTE*>(value_);
  }
  [[nodiscard]] DWORD size() const { return sizeof(value_); }

 private:
  std::weak_ptr<CryptContext> context_;
  boost::uuids::detail::sha1 digest_;
  boost::uuids::detail::sha1::digest_type value_{};
  bool is_finished_ = false;
};

template <class Kind>
std::shared_ptr<Kind> Find(Call& call, std::uintptr_t handle) {
  return call.Find<Kind>(reinterpret_cast<const void*>(handle));
}

std::shared_ptr<CryptHash> FindHash(Call& call, HCRYPTHASH handle) {
  auto hash = Find<CryptHash>(call, handle);
  if (hash != nullptr && hash->is_orphan()) {
    call.Misuse("was given a hash whose context is released");
  }
  return hash;
}

// Finds the key set. Creates it where the flags ask for a new one.
LONG TakeKeySet(Call& call, std::u16string_view container, DWORD flags) {
  Registry& registry = call.kernel().registry;
  std::string path(kKeySets);
  path += container.empty() ? std::string(kDefaultContainer) : ToUtf8(container);
  const bool exists = registry.Find(path) != nullptr;
  if (flags == 0) return exists ? ERROR_SUCCESS : NTE_BAD_KEYSET;
  if (flags != CRYPT_NEWKEYSET) return kBadFlags;
  if (exists) return kKeySetExists;
  registry.Create(path);
  call.Log(Effect::kRegistry, path + " created");
  return ERROR_SUCCESS;
}

// Copies a parameter. `bytes`: in, the size of the buffer; out, the size of the parameter.
LONG CopyParameter(const BYTE* from, DWORD size, BYTE* data, DWORD& bytes) {
  const DWORD room = std::exchange(bytes, size);
  if (data == nullptr) return ERROR_SUCCESS;
  if (room < size) return ERROR_MORE_DATA;
  std::copy_n(from, size, data);
  return ERROR_SUCCESS;
}

BOOL Finish(Call& call, LONG error) {
  return error == ERROR_SUCCESS ? TRUE : call.Fail(error, FALSE);
}

}  // namespace
}  // namespace sim

using sim::Call;
using sim::CallId;

BOOL CryptAcquireContextW(HCRYPTPROV* provider, LPCWSTR container, LPCWSTR /*provider_name*/,
                          DWORD type, DWORD flags) {
  Call call(CallId::CryptAcquireContextW);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  if (provider == nullptr) return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  if (type != PROV_RSA_FULL) return call.Fail(sim::kUnknownProvider, FALSE);
  const LONG error = sim::TakeKeySet(call, container == nullptr ? u"" : container, flags);
  if (error != ERROR_SUCCESS) return call.Fail(error, FALSE);
  *provider = call.AddHandle<HCRYPTPROV>(std::make_shared<sim::CryptContext>());
  return TRUE;
}

BOOL CryptCreateHash(HCRYPTPROV provider, ALG_ID algorithm, HCRYPTKEY /*key*/, DWORD flags,
                     HCRYPTHASH* hash) {
  Call call(CallId::CryptCreateHash);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  if (hash == nullptr) return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  const auto context = sim::Find<sim::CryptContext>(call, provider);
  if (context == nullptr) return FALSE;
  if (flags != 0) return call.Fail(sim::kBadFlags, FALSE);
  if (algorithm != CALG_SHA1) return call.Fail(sim::kBadAlgorithm, FALSE);
  *hash = call.AddHandle<HCRYPTHASH>(std::make_shared<sim::CryptHash>(context));
  return TRUE;
}

BOOL CryptHashData(HCRYPTHASH handle, const BYTE* data, DWORD bytes, DWORD flags) {
  Call call(CallId::CryptHashData);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  const auto hash = sim::FindHash(call, handle);
  if (hash == nullptr) return FALSE;
  if (data == nullptr) return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  if (flags != 0) return call.Fail(sim::kBadFlags, FALSE);
  if (hash->is_finished()) return call.Fail(sim::kBadHashState, FALSE);
  hash->Add(data, bytes);
  return TRUE;
}

BOOL CryptGetHashParam(HCRYPTHASH handle, DWORD parameter, BYTE* data, DWORD* bytes, DWORD flags) {
  Call call(CallId::CryptGetHashParam);
  if (call.fault() != 0) return call.Fail(call.fault(), FALSE);
  const auto hash = sim::FindHash(call, handle);
  if (hash == nullptr) return FALSE;
  if (bytes == nullptr) return call.Fail(ERROR_INVALID_PARAMETER, FALSE);
  if (flags != 0) return call.Fail(sim::kBadFlags, FALSE);
  const DWORD size = hash->size();
  if (parameter == HP_HASHSIZE) {
    return sim::Finish(
        call, sim::CopyParameter(reinterpret_cast<const BYTE*>(&size), sizeof(size), data, *bytes));
  }
  if (parameter != HP_HASHVAL) return call.Fail(sim::kBadType, FALSE);
  if (data == nullptr) return sim::Finish(call, sim::CopyParameter(nullptr, size, data, *bytes));
  return sim::Finish(call, sim::CopyParameter(hash->Finish(), size, data, *bytes));
}

BOOL CryptDestroyHash(HCRYPTHASH handle) {
  Call call(CallId::CryptDestroyHash);
  if (sim::FindHash(call, handle) == nullptr) return FALSE;
  call.kernel().handles.Close(handle);
  return sim::Finish(call, call.fault());
}

BOOL CryptReleaseContext(HCRYPTPROV provider, DWORD flags) {
  Call call(CallId::CryptReleaseContext);
  if (sim::Find<sim::CryptContext>(call, provider) == nullptr) return FALSE;
  if (flags != 0) return call.Fail(sim::kBadFlags, FALSE);
  call.kernel().handles.Close(provider);
  return sim::Finish(call, call.fault());
}
