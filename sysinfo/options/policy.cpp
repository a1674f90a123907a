// Policies: for each feature a key that says where its switch stands.
#include <algorithm>
#include <iterator>
#include <span>

#include "frame/registry.h"
#include "frame/result.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "include/palmfgopt.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kConfigStore};

constexpr size_t kMaxPathUnits = 260;
using PolicyText = WCHAR[kMaxPathUnits + 1];

// False for a value of another type, an empty text, and one of more than 520 bytes.
bool ReadPolicyText(const UniqueRegistryKey& key, const WCHAR* name, PolicyText& text) {
  StoredValue stored;
  return ReadText(key, name, text, &stored) == ERROR_SUCCESS && stored.type == REG_SZ &&
         text[0] != WCHAR{};
}

// False for a value of another type, and one of 0 bytes.
bool ReadState(const UniqueRegistryKey& key, const WCHAR* name, DWORD& state) {
  StoredValue stored;
  return ReadNumber(key, name, state, &stored) == ERROR_SUCCESS && stored.type == REG_DWORD &&
         stored.bytes != 0;
}

LONG OpenForReading(const WCHAR* path, UniqueRegistryKey& key) {
  return OpenRegistryKey(HKEY_LOCAL_MACHINE, path, KEY_QUERY_VALUE, key);
}

bool FeaturePath(const WCHAR* feature, std::span<WCHAR> path) {
  constexpr WideText kRoot = kPolicyPath;
  if (!Copy(path, kRoot)) return false;
  path[kRoot.size()] = TEXT('\\');
  return Copy(path.subspan(kRoot.size() + 1), feature);
}

// The key of a feature. A name that is too long for a key's path names no key.
bool OpenFeature(const WCHAR* feature, std::span<WCHAR> path, UniqueRegistryKey& key) {
  bool opened = false;
  if (FeaturePath(feature, path)) {
    kTrace.Info("IsDisabledByPolicy - Open indirect subkey: %ls", path.data());
    opened = OpenForReading(path.data(), key) == ERROR_SUCCESS;
  }
  // The root alone, on purpose: the line before this one has the whole path.
  if (!opened) {
    kTrace.Error("IsDisabledByPolicy - Err open indirect subkey: %ls", kPolicyPath);
  }
  return opened;
}

HRESULT ResultOf(DWORD state) {
  if (state > 1) return PAL_MFGOPT_E_VALUE_INVALID;
  return state == 0 ? PAL_MFGOPT_S_ENABLED : PAL_MFGOPT_S_DISABLED;
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALMFGOpt_IsDisabledByPolicy(const WCHAR* feature) {
  if (feature == nullptr) {
    pal::kTrace.Error("IsDisabledByPolicy - Invalid input ( feature )");
    return PAL_MFGOPT_E_NO_FEATURE_GIVEN;
  }
  WCHAR feature_path[pal::kMaxPathUnits];
  pal::UniqueRegistryKey feature_key;
  if (!pal::OpenFeature(feature, feature_path, feature_key)) return PAL_MFGOPT_E_NO_SUCH_FEATURE;

  pal::PolicyText text;
  if (!pal::ReadPolicyText(feature_key, TEXT("PolicyLocation"), text)) {
    pal::kTrace.Error("IsDisabledByPolicy - Err Reading policy loc indirect key: %ls",
                      feature_path);
    return PAL_MFGOPT_E_LOCATION_UNREADABLE;
  }
  pal::UniqueRegistryKey state_key;
  if (pal::OpenForReading(text, state_key) != ERROR_SUCCESS) {
    pal::kTrace.Info("IsDisabledByPolicy - Tavi key nonexistant.  Assume enabled");
    return PAL_MFGOPT_S_ENABLED;
  }
  if (!pal::ReadPolicyText(feature_key, TEXT("PolicyKey"), text)) {
    pal::kTrace.Error("IsDisabledByPolicy - Err Reading policy indirect keyname");
    return PAL_MFGOPT_E_VALUE_UNREADABLE;
  }
  DWORD state = 0;
  if (!pal::ReadState(state_key, text, state)) {
    pal::kTrace.Error("IsDisabledByPolicy - Err Reading policy state keyvalue");
    return PAL_MFGOPT_E_VALUE_UNREADABLE;
  }
  pal::kTrace.Info("IsDisabledByPolicy - Disabled keyvalue state:%d", state);
  return pal::ResultOf(state);
}
