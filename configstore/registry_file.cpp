// Imports a registry file where it is meant for this device.
#include "configstore/registry_file.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <string_view>

#include "frame/result.h"
#include "frame/text.h"
#include "frame/trace.h"
#include "include/palreg.h"
#include "sysinfo/internal.h"

namespace pal {
namespace {

constexpr TraceSource kTrace{Facility::kRegistryFile};

struct FileTag {
  const char* model_prefix;  // empty: no model imports the files of this row
  std::string_view tag;      // part of the names of the files for these models
};

constexpr std::array<FileTag, 16> kFileTags = {{
    {"", "P8"},
    {"", "P7"},
    {"RM22", "RM21"},
    {"RM20", "RM21"},
    {"RM21", "RM21"},
    {"RM23", "RM21"},
    {"RM19", "RM21"},
    {"RM18", "RM18"},
    {"RM17", "RM18"},
    {"RM16", "RM18"},
    {"RMV", "RMV"},
    {"RM15", "RMx14"},
    {"RM13", "RM13"},
    {"RM12F", "RM11"},
    {"RM11", "RM11"},
    {"RM10", "RM10"},
}};

constexpr char UpperCase(char character) {
  const bool is_lower = character >= 'a' && character <= 'z';
  return is_lower ? static_cast<char>(character - 'a' + 'A') : character;
}

template <typename IsSame>
bool HasTag(std::string_view name, std::string_view tag, IsSame is_same) {
  for (; name.size() >= tag.size(); name.remove_prefix(1)) {
    if (std::equal(tag.begin(), tag.end(), name.begin(), is_same)) return true;
  }
  return false;
}

bool IsPlatformSpecific(std::string_view upper_case_name) {
  const auto is_same = [](char of_tag, char of_name) { return of_name == UpperCase(of_tag); };
  return std::ranges::any_of(
      kFileTags, [&](const FileTag& row) { return HasTag(upper_case_name, row.tag, is_same); });
}

// The case of the tag counts here. A tag with a small letter is never part of a name in upper case:
// the files with "RMx14" are imported on no model, on purpose.
bool IsForModel(std::string_view upper_case_name, const char* model) {
  return std::ranges::any_of(kFileTags, [&](const FileTag& row) {
    const size_t length = std::strlen(row.model_prefix);
    return length != 0 && _strnicmp(model, row.model_prefix, length) == 0 &&
           HasTag(upper_case_name, row.tag, std::equal_to<>());
  });
}

bool IsUsable(const WCHAR* directory, const WCHAR* file_name) {
  if (directory == nullptr || file_name == nullptr || *file_name == 0) return false;
  const size_t path_units = wcslen(directory) + 1 + wcslen(file_name);
  return path_units < MAX_PATH;
}

HRESULT LoadRegistry(const WCHAR* directory, const WCHAR* file_name, DWORD clear_trees) {
  char name[MAX_PATH];
  if (!IsUsable(directory, file_name) || !Narrow(name, file_name)) return E_FAIL;

  char model[64] = {};
  DWORD model_length = sizeof(model);
  const HRESULT model_result = PalGetModel(model, &model_length);
  kTrace.Info("PalGetModel(%s,%d)", model, model_length);
  if (Failed(model_result)) {
    kTrace.Echoed().Error("PALREG_LoadRegistry - Failure. 0x%x=PalGetModel()", model_result);
    return model_result;
  }

  const std::string_view upper_case_name(name, wcslen(file_name));
  std::transform(name, name + upper_case_name.size(), name, &UpperCase);
  if (!IsPlatformSpecific(upper_case_name)) {
    kTrace.Echoed().Info("PALREG_LoadRegistry Importing platform agnostic file %s", name);
  } else if (IsForModel(upper_case_name, model)) {
    kTrace.Echoed().Info("PALREG_LoadRegistry Importing %s", name);
  } else {
    kTrace.Echoed().Info("PALREG_LoadRegistry Did not import %ls,%ls", directory, file_name);
    return S_OK;
  }
  return PALInitCheckAndLoadRegFile(directory, file_name, clear_trees);
}

}  // namespace
}  // namespace pal

HRESULT PALAPI PALREG_LoadRegistry(const WCHAR* directory, const WCHAR* file_name,
                                   DWORD clear_trees) {
  pal::kTrace.Info("PALREG_LoadRegistry(%ls,%ls,0x%x) Entry", pal::ShownText(directory),
                   pal::ShownText(file_name), clear_trees);
  const HRESULT result = pal::LoadRegistry(directory, file_name, clear_trees);
  pal::kTrace.Info("0x%x=PALREG_LoadRegistry(%ls,%ls,0x%x) Exit", result, pal::ShownText(directory),
                   pal::ShownText(file_name), clear_trees);
  return result;
}
