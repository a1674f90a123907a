#include "platform/sim/kernel/file_system.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/sim/text.h"

namespace sim {
namespace {

constexpr std::size_t kMaximumUnits = 260;  // with the terminator

// Removes the first name from a path and returns it; empty at the end of the path.
std::string_view TakeName(std::string_view& path) {
  path.remove_prefix(std::min(path.find_first_not_of('\\'), path.size()));
  const std::string_view name = path.substr(0, path.find('\\'));
  path.remove_prefix(name.size());
  return name;
}

bool IsNameAllowed(std::string_view name) {
  const bool dots = name == "." || name == "..";
  return !dots && IsUtf8(name) && std::none_of(name.begin(), name.end(), [](char unit) {
    constexpr std::string_view kForbidden = "/:*?\"<>|\x7F";
    return (unit >= 0 && unit < ' ') || kForbidden.find(unit) != std::string_view::npos;
  });
}

std::shared_ptr<FileNode> FindChild(const FileNode& folder, std::string_view name) {
  const std::shared_ptr<FileNode>* const found = folder.children.Find(name);
  return found == nullptr ? nullptr : *found;
}

std::shared_ptr<FileNode> FindOrAdd(FileNode& folder, std::string_view name, bool is_folder) {
  if (std::shared_ptr<FileNode> found = FindChild(folder, name)) {
    return found->is_folder == is_folder ? found : nullptr;
  }
  auto child = std::make_shared<FileNode>();
  child->name = name;
  child->is_folder = is_folder;
  folder.children.Add(name, child);
  return child;
}

struct SplitPath {
  std::string_view folder;
  std::string_view name;
};

SplitPath Split(std::string_view path) {
  path = path.substr(0, path.find_last_not_of('\\') + 1);
  const std::size_t name = path.rfind('\\') + 1;  // 0 without a backslash
  return {path.substr(0, name), path.substr(name)};
}

std::shared_ptr<FileNode> CopyOf(const FileNode& node) {
  auto copy = std::make_shared<FileNode>();
  copy->name = node.name;
  copy->is_folder = node.is_folder;
  copy->data = node.data;
  for (const auto& child : node.children.items()) copy->children.Add(child->name, CopyOf(*child));
  return copy;
}

}  // namespace

FileSystem::FileSystem() : root_(std::make_shared<FileNode>()) {
  root_->is_folder = true;
}

bool FileSystem::IsPathAllowed(std::string_view path) {
  if (ToUtf16(path).size() >= kMaximumUnits) return false;
  for (auto name = TakeName(path); !name.empty(); name = TakeName(path)) {
    if (!IsNameAllowed(name)) return false;
  }
  return true;
}

std::shared_ptr<FileNode> FileSystem::Find(std::string_view path) const {
  std::shared_ptr<FileNode> node = root_;
  for (auto name = TakeName(path); node && !name.empty(); name = TakeName(path)) {
    node = FindChild(*node, name);
  }
  return node;
}

// It changes what the root holds. NOLINTNEXTLINE(readability-make-member-function-const)
std::shared_ptr<FileNode> FileSystem::CreateFile(std::string_view path) {
  const SplitPath split = Split(path);
  const std::shared_ptr<FileNode> folder = Find(split.folder);
  const bool possible = folder && folder->is_folder && !split.name.empty() && IsPathAllowed(path);
  return possible ? FindOrAdd(*folder, split.name, false) : nullptr;
}

std::shared_ptr<FileNode> FileSystem::CreateFolder(std::string_view path) {
  if (!IsPathAllowed(path)) return nullptr;
  std::shared_ptr<FileNode> node = root_;
  for (auto name = TakeName(path); node && !name.empty(); name = TakeName(path)) {
    node = FindOrAdd(*node, name, true);
  }
  return node;
}

bool FileSystem::Remove(std::string_view path) {
  const std::shared_ptr<FileNode> node = Find(path);
  if (!node || node == root_) return false;
  return Find(Split(path).folder)->children.Remove(node->name);
}

void FileSystem::Write(std::string_view path, std::vector<std::uint8_t> data) {
  const bool possible = IsPathAllowed(path) && CreateFolder(Split(path).folder) != nullptr;
  const std::shared_ptr<FileNode> file = possible ? CreateFile(path) : nullptr;
  if (!file) throw std::invalid_argument("no file can have the path " + std::string(path));
  file->data = std::move(data);
}

void FileSystem::Write(std::string_view path, std::string_view text) {
  Write(path, std::vector<std::uint8_t>(text.begin(), text.end()));
}

const std::vector<std::uint8_t>* FileSystem::Read(std::string_view path) const {
  const std::shared_ptr<FileNode> file = Find(path);
  return file && !file->is_folder ? &file->data : nullptr;
}

void FileSystem::CopyFrom(const FileSystem& other) {
  root_ = CopyOf(*other.root_);
}

}  // namespace sim
