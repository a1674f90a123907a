// The check of a password against a member's salted hash in the registry.
#include "frame/registry.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "include/palsecurity.h"
#include "security/password_hash.h"
#include "security/secret_bytes.h"

namespace {

constexpr pal::TraceSource kTrace{pal::Facility::kImageCapturePolicy};

constexpr pal::WideText kMembers = TEXT("Software\\Dravonel\\SN\\");

constexpr DWORD kRight = 0;
constexpr DWORD kWrong = 1;

enum class Reading { kDone, kNothingThere, kFailed };

// An empty value is nothing.
Reading ReadSecret(HKEY member, const WCHAR* name, pal::SecretBytes& secret) {
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

bool IsPasswordOf(HKEY member, pal::WideText password) {
  pal::SecretBytes stored_hash;
  pal::SecretBytes salt;
  const Reading hash_reading = ReadSecret(member, TEXT("h"), stored_hash);
  const Reading salt_reading = ReadSecret(member, TEXT("s"), salt);
  if (hash_reading == Reading::kFailed || salt_reading == Reading::kFailed) return false;
  const bool is_provisioned = hash_reading == Reading::kDone && salt_reading == Reading::kDone;
  if (!is_provisioned) return password.empty();
  pal::SecretBytes hash;
  return pal::HashPassword(salt.bytes(), password, hash) &&
         pal::AreEqualInConstantTime(hash.bytes(), stored_hash.bytes());
}

bool IsRight(const WCHAR* member, pal::WideText password) {
  if (member == nullptr) {
    kTrace.Error("ERROR Security_CheckPx key invalid. procid:0x%x\r\n", GetCurrentProcessId());
    return false;
  }
  WCHAR path[MAX_PATH] = {};
  const pal::WideText name(member, wcslen(member));
  if (!pal::Copy(path, kMembers) || !pal::Append(path, name)) return false;
  pal::UniqueRegistryKey key;
  const LONG error = pal::OpenRegistryKey(HKEY_LOCAL_MACHINE, path, KEY_QUERY_VALUE, key);
  // A member that nobody provisioned has the empty password.
  return error == ERROR_SUCCESS ? IsPasswordOf(key.get(), password) : password.empty();
}

}  // namespace

DWORD PALAPI PALSecurity_CheckPx(const WCHAR* member, const WCHAR* password) {
  kTrace.Info("Entry PALSecurity_CheckPx. procid:0x%x\r\n", GetCurrentProcessId());
  const WCHAR* const text = password == nullptr ? TEXT("") : password;
  const DWORD answer = IsRight(member, pal::WideText(text, wcslen(text))) ? kRight : kWrong;
  // The line says that 2 is no: kept so.
  kTrace.Info("Exit PALSecurity_CheckPx. procid:0x%x, member:0x%x(0=yes,2=no)\r\n",
              GetCurrentProcessId(), answer);
  return answer;
}
