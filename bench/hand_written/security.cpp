#include <cstdlib>

#include "bench/hand_written/registry.h"
#include "include/palsecurity.h"

namespace {

const WCHAR* const kCommands[] = {TEXT("tdyskin\\Shell\\Open\\Command"),
                                  TEXT("cabfile\\Shell\\Open\\Command")};

struct Secret {
  BYTE* bytes = nullptr;
  DWORD allocated = 0;
  DWORD size = 0;
};

BYTE* Allocate(Secret& secret, DWORD bytes) {
  secret.bytes = static_cast<BYTE*>(malloc(bytes));
  secret.allocated = secret.size = secret.bytes != nullptr ? bytes : 0;
  return secret.bytes;
}

// Wiped first.
void Free(Secret& secret) {
  volatile BYTE* bytes = secret.bytes;
  for (DWORD at = 0; at < secret.allocated; ++at) bytes[at] = 0;
  free(secret.bytes);
}

enum Reading { kDone, kNothing, kFailed };

Reading Read(HKEY key, const WCHAR* name, Secret& secret) {
  DWORD bytes = 0;
  const LONG error = RegQueryValueExW(key, name, nullptr, nullptr, nullptr, &bytes);
  if (error == ERROR_FILE_NOT_FOUND) return kNothing;
  if (error != ERROR_SUCCESS) return kFailed;
  if (bytes == 0) return kNothing;
  if (Allocate(secret, bytes) == nullptr) return kFailed;
  if (RegQueryValueExW(key, name, nullptr, nullptr, secret.bytes, &bytes) != ERROR_SUCCESS) {
    return kFailed;
  }
  if (bytes < secret.size) secret.size = bytes;
  return kDone;
}

bool HashWith(HCRYPTHASH hash, const Secret& salt, const WCHAR* password, Secret& value) {
  DWORD bytes = sizeof(DWORD);
  DWORD size = 0;
  return CryptHashData(hash, salt.bytes, salt.size, 0) != FALSE &&
         CryptHashData(hash, reinterpret_cast<const BYTE*>(password),
                       static_cast<DWORD>(wcslen(password) * sizeof(WCHAR)), 0) != FALSE &&
         CryptGetHashParam(hash, HP_HASHSIZE, reinterpret_cast<BYTE*>(&size), &bytes, 0) != FALSE &&
         Allocate(value, size) != nullptr &&
         CryptGetHashParam(hash, HP_HASHVAL, value.bytes, &value.size, 0) != FALSE;
}

bool Hash(const Secret& salt, const WCHAR* password, Secret& value) {
  HCRYPTPROV context = 0;
  if (CryptAcquireContextW(&context, nullptr, nullptr, PROV_RSA_FULL, 0) == FALSE) {
    // A key set that is made now is of use to the next check.
    if (GetLastError() == static_cast<DWORD>(NTE_BAD_KEYSET) &&
        CryptAcquireContextW(&context, nullptr, nullptr, PROV_RSA_FULL, CRYPT_NEWKEYSET) != FALSE) {
      CryptReleaseContext(context, 0);
    }
    return false;
  }
  HCRYPTHASH hash = 0;
  bool done = CryptCreateHash(context, CALG_SHA1, 0, 0, &hash) != FALSE;
  if (done) {
    done = HashWith(hash, salt, password, value);
    CryptDestroyHash(hash);
  }
  CryptReleaseContext(context, 0);
  return done;
}

bool AreEqual(const Secret& left, const Secret& right) {
  if (left.size != right.size) return false;
  volatile BYTE difference = 0;
  for (DWORD at = 0; at < left.size; ++at) {
    difference = static_cast<BYTE>(difference | (left.bytes[at] ^ right.bytes[at]));
  }
  return difference == 0;
}

bool Check(HKEY key, const WCHAR* password) {
  Secret stored;
  Secret salt;
  Secret hash;
  const Reading hash_reading = Read(key, TEXT("h"), stored);
  const Reading salt_reading = Read(key, TEXT("s"), salt);
  bool is_right = false;
  if (hash_reading == kDone && salt_reading == kDone) {
    is_right = Hash(salt, password, hash) && AreEqual(hash, stored);
  } else if (hash_reading != kFailed && salt_reading != kFailed) {
    is_right = password[0] == 0;
  }
  Free(hash);
  Free(salt);
  Free(stored);
  return is_right;
}

LONG ReadCommand(HKEY key, WCHAR* text, DWORD* type, DWORD* bytes) {
  *bytes = 512;
  return RegQueryValueExW(key, nullptr, nullptr, type, reinterpret_cast<BYTE*>(text), bytes);
}

bool AsksForPassword(const WCHAR* path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, path, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) {
    return false;
  }
  WCHAR text[257];
  DWORD type = 0;
  DWORD bytes = 0;
  const LONG error = ReadCommand(key, text, &type, &bytes);
  RegCloseKey(key);
  if (error != ERROR_SUCCESS) return false;
  text[bytes / sizeof(WCHAR)] = 0;
  return _wcsnicmp(text, TEXT("cabchck"), 7) == 0;
}

HRESULT SetProgram(const WCHAR* path, const WCHAR* program) {
  HKEY key = nullptr;
  LONG error = RegOpenKeyExW(HKEY_CLASSES_ROOT, path, 0, KEY_QUERY_VALUE | KEY_SET_VALUE, &key);
  if (error != ERROR_SUCCESS) return ResultOf(error);
  WCHAR text[256];
  DWORD type = 0;
  DWORD bytes = 0;
  error = ReadCommand(key, text, &type, &bytes);
  if (error != ERROR_SUCCESS) {
    RegCloseKey(key);
    return ResultOf(error);
  }
  const DWORD units = bytes / sizeof(WCHAR);
  DWORD length = 0;
  while (length < units && text[length] != 0) ++length;
  HRESULT result = E_FAIL;
  if (length >= 7 && length < units) {
    memcpy(text, program, 7 * sizeof(WCHAR));
    error = RegSetValueExW(key, nullptr, 0, type, reinterpret_cast<const BYTE*>(text), bytes);
    result = ResultOf(error);
  }
  RegCloseKey(key);
  return result;
}

}  // namespace

HRESULT PALAPI PALSecurity_GetCabFilePasswordProtect(DWORD* enabled) {
  if (enabled == nullptr) return E_FAIL;
  *enabled = AsksForPassword(kCommands[0]) || AsksForPassword(kCommands[1]) ? 1 : 0;
  return S_OK;
}

HRESULT PALAPI PALSecurity_SetCabFilePasswordProtect(DWORD enable) {
  const WCHAR* program = enable == 1 ? TEXT("cabchck") : TEXT("wceload");
  const HRESULT result = SetProgram(kCommands[0], program);
  return result < 0 ? result : SetProgram(kCommands[1], program);
}

DWORD PALAPI PALSecurity_CheckPx(const WCHAR* member, const WCHAR* password) {
  if (member == nullptr) return 1;
  if (password == nullptr) password = TEXT("");
  constexpr WCHAR kMembers[] = TEXT("Software\\Dravonel\\SN\\");
  constexpr size_t kPrefix = sizeof(kMembers) / sizeof(WCHAR) - 1;
  WCHAR path[MAX_PATH];
  const size_t units = wcslen(member);
  if (kPrefix + units >= MAX_PATH) return 1;
  memcpy(path, kMembers, kPrefix * sizeof(WCHAR));
  memcpy(path + kPrefix, member, (units + 1) * sizeof(WCHAR));
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS) {
    return password[0] == 0 ? 0 : 1;
  }
  const bool is_right = Check(key, password);
  RegCloseKey(key);
  return is_right ? 0 : 1;
}
