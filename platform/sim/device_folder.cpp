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

void LoadRegistry(Registry& registry, const fs::path& file) {
  if (!fs::exists(fs::symlink_status(file))) return;
  const std::vector<std::string> errors = ImportRegistryText(registry, ReadHostFile(file));
  if (errors.empty()) return;
  const std::string more =
      errors.size() == 1 ? "" : fmt::format(" (and {} more)", errors.size() - 1);
  throw DeviceFolderError(fmt::format("{}:{}{}", file.string(), errors.front(), more));
}

bool HasFiles(const fs::path& folder) {
  const fs::file_status status = fs::symlink_status(folder);
  if (fs::exists(status) && !fs::is_directory(status)) {
    throw DeviceFolderError(folder.string() + ": this is not a folder");
  }
  return fs::exists(status);
}

// Sorted, so that the device lists its files in the same order on every host.
std::vector<fs::path> EntriesOf(const fs::path& folder) {
  std::vector<fs::path> entries;
  for (const auto& entry : fs::directory_iterator(folder)) entries.push_back(entry.path());
  std::sort(entries.begin(), entries.end());
  return entries;
}

void LoadFiles(FileSystem& files, const std::string& device_path, const fs::path& folder) {
  for (const fs::path& entry : EntriesOf(folder)) {
    const std::string path = device_path + '\\' + entry.filename().string();
    const auto fail = [&](std::string_view what) {
      throw DeviceFolderError(fmt::format("{}: {}", entry.string(), what));
    };
    if (entry.filename().string().find('\\') != std::string::npos ||
        !FileSystem::IsPathAllowed(path)) {
      fail("a file of the device cannot have this name");
    }
    if (files.Find(path)) fail("another name differs from this one by upper and lower case only");
    if (fs::is_directory(fs::symlink_status(entry))) {
      files.CreateFolder(path);
      LoadFiles(files, path, entry);
    } else {
      files.Write(path, ReadHostFile(entry));
    }
  }
}

class Saver {
 public:
  Saver(Device& device, fs::path folder)
      : device_(device), folder_(std::move(folder)), temporary_(folder_ / ".saving") {}

  void Save() {
    SaveDescription();
    SaveRegistry();
    const fs::path files = folder_ / "files";
    const FileNode& root = *device_.files().root();
    if (!HasFiles(files) && root.children.items().empty()) return;
    MakeFolder(files);
    SaveFolder(root, files);
  }

 private:
  void SaveDescription() {
    const fs::path file = folder_ / "device.toml";
    ReplaceHostFile(file, temporary_, WithState(ReadHostFile(file), device_));
  }

  // A file with the same content stays as it is, with its author's comments.
  void SaveRegistry() {
    const fs::path file = folder_ / "registry.reg";
    const std::string text = ExportRegistryText(device_.registry());
    Registry on_disk;
    LoadRegistry(on_disk, file);
    if (ExportRegistryText(on_disk) != text) ReplaceHostFile(file, temporary_, text);
  }

  static void MakeFolder(const fs::path& folder) {
    if (!fs::is_directory(fs::symlink_status(folder))) fs::remove_all(folder);
    fs::create_directory(folder);
  }

  static bool IsSame(const FileNode& node, const fs::path& entry) {
    const fs::file_status status = fs::symlink_status(entry);
    const bool same_kind = node.is_folder ? fs::is_directory(status) : fs::is_regular_file(status);
    return same_kind && node.name == entry.filename().string();
  }

  void SaveFolder(const FileNode& node, const fs::path& folder) {
    for (const fs::path& entry : EntriesOf(folder)) {
      const auto* const child = node.children.Find(entry.filename().string());
      if (child == nullptr || !IsSame(**child, entry)) fs::remove_all(entry);
    }
    for (const auto& child : node.children.items()) SaveNode(*child, folder / child->name);
  }

  void SaveNode(const FileNode& node, const fs::path& path) {
    if (node.is_folder) {
      MakeFolder(path);
      SaveFolder(node, path);
    } else {
      ReplaceHostFile(path, temporary_,
                      {reinterpret_cast<const char*>(node.data.data()), node.data.size()});
    }
  }

  Device& device_;
  fs::path folder_;
  fs::path temporary_;
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

void SaveDevice(Device& device, const fs::path& folder) {
  try {
    Saver(device, folder).Save();
  } catch (const fs::filesystem_error& error) {
    throw DeviceFolderError(error.what());
  }
}

}  // namespace sim
