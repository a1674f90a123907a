// The check of a password against a member's salted hash in the registry.
#include "frame/registry.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "include/palsecurity.h"
#include "security/password_hash.h"
#include "security/secret_bytes.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kImageCapturePolicy};

constexpr WideText kMembers = TEXT("Software\\Dravonel\\SN\\");

enum class Reading { kDone, kNothingThere, kFailed };

// An empty value counts as missing.
Reading ReadSecret(const UniqueRegistryKey& member, const WCHAR* name, SecretBytes& secret) {
  StoredValue stored;
  const LONG error = ReadBytes(member, name, {}, stored);
  if (error == ERROR_FILE_NOT_FOUND) return Reading::kNothingThere;
  if (error != ERROR_SUCCESS) return Reading::kFailed;
  if (stored.bytes == 0) return Reading::kNothingThere;
  if (!secret.Allocate(stored.bytes) ||
      ReadBytes(member, name, {secret.data(), secret.size()}, stored) != ERROR_SUCCESS) {
    return Reading::kFailed;
  }
  secret.Shorten(stored.bytes);
  return Reading::kDone;
}

bool IsPasswordOf(const UniqueRegistryKey& member, WideText password) {
  SecretBytes stored_hash;
  SecretBytes salt;
  const Reading hash_reading = ReadSecret(member, TEXT("h"), stored_hash);
  const Reading salt_reading = ReadSecret(member, TEXT("s"), salt);
  if (hash_reading == Reading::kFailed || salt_reading == Reading::kFailed) return false;
  const bool is_provisioned = hash_reading == Reading::kDone && salt_reading == Reading::kDone;
  if (!is_provisioned) return password.empty();
  SecretBytes hash;
  return HashPassword(salt.bytes(), password, hash) &&
         AreEqualInConstantTime(hash.bytes(), stored_hash.bytes());
}

bool IsRight(const WCHAR* member, WideText password) {
  if (member == nullptr) {
    kTrace.Error("ERROR Security_CheckPx key invalid. procid:0x%x\r\n", GetCurrentProcessId());
    return false;
  }
  WCHAR path[MAX_PATH] = {};
  const WideText name(member, wcslen(member));
  if (!Copy(path, kMembers) || !Append(path, name)) return false;
  UniqueRegistryKey key;
  const LONG error = OpenRegistryKey(HKEY_LOCAL_MACHINE, path, KEY_QUERY_VALUE, key);
  // The password of a member without a key is empty.
  return error == ERROR_SUCCESS ? IsPasswordOf(key, password) : password.empty();
}

}  // namespace
}  // namespace pal

DWORD PALAPI PALSecurity_CheckPx(const WCHAR* member, const WCHAR* password) {
  pal::kTrace.Info("Entry PALSecurity_CheckPx. procid:0x%x\r\n", GetCurrentProcessId());
  const WCHAR* const text = password == nullptr ? TEXT("") : password;
  const DWORD answer = pal::IsRight(member, pal::WideText(text, wcslen(text))) ? PAL_PASSWORD_RIGHT
                                                                               : PAL_PASSWORD_WRONG;
  // The line says that 2 is no, but no is 1.
  pal::kTrace.Info("Exit PALSecurity_CheckPx. procid:0x%x, member:0x%x(0=yes,2=no)\r\n",
                   GetCurrentProcessId(), answer);
  return answer;
}
