#include "platform/sim/device_folder.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/sim/device_description.h"
#include "platform/sim/host_file.h"
#include "platform/sim/kernel/registry_text.h"

namespace sim {
namespace {

namespace fs = std::filesystem;

// The author's part of the description as the device got it from a sample.
constexpr const char* kOriginalDescription = ".sample";

void LoadRegistry(Registry& registry, const fs::path& file) {
  if (!IsThere(file)) return;
  const std::vector<std::string> errors = ImportRegistryText(registry, ReadHostFile(file));
  if (errors.empty()) return;
  const std::string more =
      errors.size() == 1 ? "" : fmt::format(" (and {} more)", errors.size() - 1);
  throw DeviceFolderError(fmt::format("{}:{}{}", file.string(), errors.front(), more));
}

bool HasFiles(const fs::path& folder) {
  if (IsThere(folder) && !IsHostFolder(folder)) {
    throw DeviceFolderError(folder.string() + ": this is not a folder");
  }
  return IsThere(folder);
}

void LoadFiles(FileSystem& files, const std::string& device_path, const fs::path& folder) {
  for (const fs::path& entry : HostEntries(folder)) {
    const std::string path = device_path + '\\' + entry.filename().string();
    const auto fail = [&](std::string_view what) {
      throw DeviceFolderError(fmt::format("{}: {}", entry.string(), what));
    };
    if (entry.filename().string().find('\\') != std::string::npos ||
        !FileSystem::IsPathAllowed(path)) {
      fail("a file of the device cannot have this name");
    }
    if (files.Find(path)) fail("another name differs from this one by upper and lower case only");
    if (IsHostFolder(entry)) {
      files.CreateFolder(path);
      LoadFiles(files, path, entry);
    } else {
      files.Write(path, ReadHostFile(entry));
    }
  }
}

class Saver {
 public:
  Saver(Device& device, fs::path origin, FolderChange& change)
      : device_(device), origin_(std::move(origin)), change_(change) {}

  void Save() {
    SaveDescription();
    SaveRegistry();
    const bool has_files = HasFiles(change_.folder() / "files");
    const FileNode& root = *device_.files().root();
    if (has_files || !root.children.items().empty()) SaveFolder(root, "files");
  }

 private:
  void SaveDescription() {
    const std::string text = ReadHostFile(origin_ / "device.toml");
    change_.Put("device.toml", WithState(text, device_));
    if (origin_ != change_.folder()) change_.Put(kOriginalDescription, AuthorsPart(text));
  }

  // A file with the same content stays as it is, with its author's comments.
  void SaveRegistry() {
    const fs::path file = origin_ / "registry.reg";
    const std::string text = ExportRegistryText(device_.registry());
    const bool is_there = IsThere(file);
    const std::string present = is_there ? ReadHostFile(file) : std::string();
    Registry on_disk;
    if (present != text) LoadRegistry(on_disk, file);
    const bool is_same = present == text || ExportRegistryText(on_disk) == text;
    if (is_same && !is_there) return change_.Remove("registry.reg");
    change_.Put("registry.reg", is_same ? present : text);
  }

  // What another kind of entry takes the place of is not listed: it goes when that one comes.
  void SaveFolder(const FileNode& node, const fs::path& name) {
    change_.PutFolder(name);
    for (const fs::path& entry : HostEntries(change_.folder() / name)) {
      const std::string entry_name = entry.filename().string();
      const auto* const child = node.children.Find(entry_name);
      if (child == nullptr || (*child)->name != entry_name) change_.Remove(name / entry_name);
    }
    for (const auto& child : node.children.items()) SaveNode(*child, name / child->name);
  }

  void SaveNode(const FileNode& node, const fs::path& name) {
    if (node.is_folder) return SaveFolder(node, name);
    change_.Put(name, {reinterpret_cast<const char*>(node.data.data()), node.data.size()});
  }

  Device& device_;
  fs::path origin_;
  FolderChange& change_;
};

}  // namespace

DeviceIdentity LoadDevice(Device& device, const fs::path& folder) {
  try {
    DeviceIdentity identity = LoadDescription(device, folder / "device.toml");
    LoadRegistry(device.registry(), folder / "registry.reg");
    if (HasFiles(folder / "files")) LoadFiles(device.files(), "", folder / "files");
    return identity;
  } catch (const fs::filesystem_error& error) {
    throw DeviceFolderError(error.what());
  }
}

void PutDevice(Device& device, const fs::path& origin, FolderChange& change) {
  try {
    Saver(device, origin, change).Save();
  } catch (const fs::filesystem_error& error) {
    throw DeviceFolderError(error.what());
  }
}

void SaveDevice(Device& device, const fs::path& folder) {
  FolderChange change(folder);
  PutDevice(device, folder, change);
  change.Commit();
}

bool IsDescriptionEdited(const fs::path& folder) {
  const fs::path file = folder / "device.toml";
  const fs::path original = folder / kOriginalDescription;
  return !IsThere(file) || !IsThere(original) ||
         ReadHostFile(original) != AuthorsPart(ReadHostFile(file));
}

}  // namespace sim
