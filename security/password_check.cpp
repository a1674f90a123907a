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

// An empty value is nothing.
Reading ReadSecret(HKEY member, const WCHAR* name, SecretBytes& secret) {
  DWORD bytes = 0;
  LONG error = RegQueryValueExW(member, name, nullptr, nullptr, nullptr, &bytes);
  if (error == ERROR_FILE_NOT_FOUND) return Reading::kNothingThere;
  if (error != ERROR_SUCCESS) return Reading::kFailed;
  if (bytes == 0) return Reading::kNothingThere;
  if (!secret.Allocate(bytes)) return Reading::kFailed;
  error = RegQueryValueExW(member, name, nullptr, nullptr, secret.data(), &bytes);
  if (error != ERROR_SUCCESS) return Reading::kFailed;
  secret.Shorten(bytes);
  return Reading::kDone;
}

bool IsPasswordOf(HKEY member, WideText password) {
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
  // A member that nobody provisioned has the empty password.
  return error == ERROR_SUCCESS ? IsPasswordOf(key.get(), password) : password.empty();
}

}  // namespace
}  // namespace pal

DWORD PALAPI PALSecurity_CheckPx(const WCHAR* member, const WCHAR* password) {
  pal::kTrace.Info("Entry PALSecurity_CheckPx. procid:0x%x\r\n", GetCurrentProcessId());
  const WCHAR* const text = password == nullptr ? TEXT("") : password;
  const DWORD answer = pal::IsRight(member, pal::WideText(text, wcslen(text))) ? PAL_PASSWORD_RIGHT
                                                                               : PAL_PASSWORD_WRONG;
  // The line says that 2 is no: kept so.
  pal::kTrace.Info("Exit PALSecurity_CheckPx. procid:0x%x, member:0x%x(0=yes,2=no)\r\n",
                   GetCurrentProcessId(), answer);
  return answer;
}
