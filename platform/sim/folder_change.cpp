#include "platform/sim/folder_change.h"

#include <string>
#include <system_error>

#include "platform/sim/device_folder.h"
#include "platform/sim/host_disk.h"
#include "platform/sim/host_file.h"

namespace sim {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSaved = ".palsim-saved";
// In either of them: the new files in their folders, and an empty file for each that is to go.
constexpr const char* kPut = "put";
constexpr const char* kRemoved = "removed";

void SyncFolders(const fs::path& folder) {
  for (const fs::path& entry : HostEntries(folder)) {
    if (IsHostFolder(entry)) SyncFolders(entry);
  }
  SyncToDisk(folder);
}

// Both can be done again after any part of them.
void RemoveListed(const fs::path& list, const fs::path& folder) {
  for (const fs::path& entry : HostEntries(list)) {
    const fs::path target = folder / entry.filename();
    if (!IsHostFolder(entry)) {
      fs::remove_all(target);
    } else if (IsHostFolder(target)) {
      RemoveListed(entry, target);
    }
  }
}

void MoveIntoPlace(const fs::path& from, const fs::path& folder) {
  for (const fs::path& entry : HostEntries(from)) {
    const fs::path target = folder / entry.filename();
    if (IsHostFolder(entry) != IsHostFolder(target)) fs::remove_all(target);
    if (IsHostFolder(entry)) {
      fs::create_directory(target);
      MoveIntoPlace(entry, target);
    } else {
      fs::rename(entry, target);
    }
  }
}

// The host's errors name the file for the change alone: the user knows the folder.
template <class Work>
auto InFolder(const fs::path& folder, const char* what, const Work& work) {
  try {
    return work();
  } catch (const fs::filesystem_error& error) {
    throw DeviceFolderError(folder.string() + what + error.code().message());
  }
}

constexpr const char* kNotSaved = ": the change cannot be saved: ";
constexpr const char* kNotFinished =
    ": the last change is saved, but its files cannot be moved to their places: ";

}  // namespace

FolderChange::~FolderChange() {
  std::error_code ignored;
  if (begun_) fs::remove_all(folder_ / kSaving, ignored);
}

fs::path FolderChange::Prepare(const char* part, const fs::path& name) {
  const fs::path saving = folder_ / kSaving;
  if (!begun_) {
    fs::remove_all(saving);  // of a process that was ended, or of an older version
    fs::create_directory(saving);
    begun_ = true;
  }
  fs::path path = saving / part / name;
  fs::create_directories(path.parent_path());
  return path;
}

void FolderChange::Put(const fs::path& name, std::string_view bytes) {
  InFolder(folder_, kNotSaved, [&] {
    if (HasBytes(folder_ / name, bytes)) return;
    const fs::path file = Prepare(kPut, name);
    WriteHostFile(file, bytes);
    SyncToDisk(file);
  });
}

void FolderChange::PutFolder(const fs::path& name) {
  InFolder(folder_, kNotSaved, [&] {
    if (!IsHostFolder(folder_ / name)) fs::create_directory(Prepare(kPut, name));
  });
}

void FolderChange::Remove(const fs::path& name) {
  InFolder(folder_, kNotSaved, [&] {
    if (IsThere(folder_ / name)) WriteHostFile(Prepare(kRemoved, name), {});
  });
}

void FolderChange::Commit() {
  if (!begun_) return;
  InFolder(folder_, kNotSaved, [this] {
    SyncFolders(folder_ / kSaving);
    fs::rename(folder_ / kSaving, folder_ / kSaved);
    begun_ = false;
    SyncToDisk(folder_ / ".");  // the user may name it by a link
  });
  FinishChange(folder_);
}

bool HasUnfinishedChange(const fs::path& folder) {
  return IsThere(folder / kSaved);
}

void FinishChange(const fs::path& folder) {
  const fs::path saved = folder / kSaved;
  if (!IsThere(saved)) return;
  if (!IsHostFolder(saved)) {
    throw DeviceFolderError(saved.string() + " is not of the simulator; remove it");
  }
  InFolder(folder, kNotFinished, [&] {
    RemoveListed(saved / kRemoved, folder);
    MoveIntoPlace(saved / kPut, folder);
    fs::remove_all(saved);
  });
}

}  // namespace sim
