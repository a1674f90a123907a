#include "platform/sim/kernel/registry.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/sim/text.h"
#include "platform/wince.h"

namespace sim {
namespace {

struct RootRow {
  std::u16string_view name;
  std::u16string_view short_name;
};
constexpr std::array<RootRow, 4> kRoots{{
    {u"HKEY_CLASSES_ROOT", u"HKCR"},
    {u"HKEY_CURRENT_USER", u"HKCU"},
    {u"HKEY_LOCAL_MACHINE", u"HKLM"},
    {u"HKEY_USERS", u"HKU"},
}};

// Removes the first name from a path and returns it; empty at the end of the path.
std::u16string_view TakeName(std::u16string_view& path) {
  path.remove_prefix(std::min(path.find_first_not_of(u'\\'), path.size()));
  const std::u16string_view name = path.substr(0, path.find(u'\\'));
  path.remove_prefix(name.size());
  return name;
}

// Whether there can be keys with the names of a path, below a key at this depth.
bool IsAllowedBelow(unsigned depth, std::u16string_view path) {
  for (auto name = TakeName(path); !name.empty(); name = TakeName(path)) {
    if (++depth > Registry::kMaximumDepth || name.size() > Registry::kMaximumNameUnits) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::vector<std::uint8_t> DwordData(std::uint32_t number) {
  std::vector<std::uint8_t> data;
  for (unsigned shift = 0; shift < 32; shift += 8) {
    data.push_back(static_cast<std::uint8_t>(number >> shift));
  }
  return data;
}

std::vector<std::uint8_t> StringData(std::u16string_view text) {
  std::vector<std::uint8_t> data;
  data.reserve(2 * text.size() + 2);
  for (const char16_t unit : text) {
    data.push_back(static_cast<std::uint8_t>(unit));
    data.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  data.insert(data.end(), 2, 0);
  return data;
}

std::optional<std::uint32_t> DwordOf(const RegistryValue& value) {
  if (value.type != REG_DWORD || value.data.size() != 4) return std::nullopt;
  std::uint32_t number = 0;
  for (std::size_t i = value.data.size(); i-- != 0;) number = (number << 8) | value.data[i];
  return number;
}

std::u16string UnitsOf(const std::vector<std::uint8_t>& data) {
  std::u16string text;
  text.reserve(data.size() / 2);
  for (std::size_t i = 0; i + 1 < data.size(); i += 2) {
    text += static_cast<char16_t>(data[i] | (data[i + 1] << 8));
  }
  return text;
}

RegistryKey::~RegistryKey() {
  for (const std::shared_ptr<RegistryKey>& child : keys()) child->parent_ = nullptr;
}

std::u16string RegistryKey::Path() const {
  std::vector<const RegistryKey*> keys;
  for (const RegistryKey* key = this; key != nullptr; key = key->parent_) keys.push_back(key);
  std::u16string path(keys.back()->name_);
  keys.pop_back();
  for (; !keys.empty(); keys.pop_back()) path += u'\\' + keys.back()->name_;
  return path;
}

const RegistryValue* RegistryKey::FindValue(std::u16string_view name) const {
  return values_.Find(name);
}

void RegistryKey::SetValue(std::u16string_view name, std::uint32_t type,
                           std::vector<std::uint8_t> data) {
  RegistryValue* const value = values_.Find(name);
  if (value == nullptr) {
    values_.Add(name, {std::u16string(name), type, std::move(data)});
    return;
  }
  value->type = type;
  value->data = std::move(data);
}

bool RegistryKey::DeleteValue(std::u16string_view name) {
  return values_.Remove(name);
}

void RegistryKey::Detach() {
  deleted_ = true;
  parent_ = nullptr;
  for (const std::shared_ptr<RegistryKey>& child : keys()) child->Detach();
  keys_.Clear();
  values_.Clear();
}

std::shared_ptr<RegistryKey> RegistryKey::CopyBelow(RegistryKey* parent) const {
  auto copy = std::make_shared<RegistryKey>(name_, parent);
  copy->values_ = values_;
  for (const auto& key : keys()) copy->keys_.Add(key->name(), key->CopyBelow(copy.get()));
  return copy;
}

bool RegistryKey::IsOpen() const {
  return handles_ > 0 ||
         std::ranges::any_of(keys(), [](const auto& child) { return child->IsOpen(); });
}

unsigned RegistryKey::Depth() const {
  unsigned depth = 0;
  for (const RegistryKey* key = parent_; key != nullptr; key = key->parent_) ++depth;
  return depth;
}

Registry::Registry() {
  for (std::size_t i = 0; i < roots_.size(); ++i) {
    roots_.at(i) = std::make_shared<RegistryKey>(std::u16string(kRoots.at(i).name), nullptr);
  }
}

std::shared_ptr<RegistryKey> Registry::Find(const std::shared_ptr<RegistryKey>& from,
                                            std::u16string_view path) {
  std::shared_ptr<RegistryKey> key = from->deleted() ? nullptr : from;
  for (auto name = TakeName(path); key && !name.empty(); name = TakeName(path)) {
    const std::shared_ptr<RegistryKey>* const child = key->keys_.Find(name);
    key = child == nullptr ? nullptr : *child;
  }
  return key;
}

Registry::Created Registry::Create(const std::shared_ptr<RegistryKey>& from,
                                   std::u16string_view path) {
  if (from->deleted() || !IsAllowedBelow(from->Depth(), path)) return {};
  Created created{from, false};
  for (auto name = TakeName(path); !name.empty(); name = TakeName(path)) {
    const std::shared_ptr<RegistryKey>* const found = created.key->keys_.Find(name);
    std::shared_ptr<RegistryKey> child = found == nullptr ? nullptr : *found;
    created.is_new = child == nullptr;
    if (created.is_new) {
      child = std::make_shared<RegistryKey>(std::u16string(name), created.key.get());
      created.key->keys_.Add(name, child);
    }
    created.key = std::move(child);
  }
  return created;
}

Registry::Removal Registry::Remove(const std::shared_ptr<RegistryKey>& from,
                                   std::u16string_view path) {
  const std::shared_ptr<RegistryKey> key = Find(from, path);
  if (!key || key->parent_ == nullptr) return Removal::kMissing;
  if (key->IsOpen()) return Removal::kOpen;
  RemoveTree(key, {});
  return Removal::kDone;
}

bool Registry::RemoveTree(const std::shared_ptr<RegistryKey>& from, std::u16string_view path) {
  const std::shared_ptr<RegistryKey> key = Find(from, path);
  if (!key || key->parent_ == nullptr) return false;
  key->parent_->keys_.Remove(key->name_);
  key->Detach();
  return true;
}

std::shared_ptr<RegistryKey> Registry::TakeRoot(std::u16string_view& full_path) const {
  const std::u16string_view name = full_path.substr(0, full_path.find(u'\\'));
  for (std::size_t i = 0; i < kRoots.size(); ++i) {
    const RootRow& row = kRoots.at(i);
    if (!EqualNoCase(name, row.name) && !EqualNoCase(name, row.short_name)) continue;
    full_path.remove_prefix(name.size());
    return roots_.at(i);
  }
  return nullptr;
}

std::shared_ptr<RegistryKey> Registry::Find(std::string_view full_path) const {
  const std::u16string text = ToUtf16(full_path);
  std::u16string_view path = text;
  const std::shared_ptr<RegistryKey> from = TakeRoot(path);
  return from ? Find(from, path) : nullptr;
}

// It changes what the roots hold. NOLINTNEXTLINE(readability-make-member-function-const)
std::shared_ptr<RegistryKey> Registry::Create(std::string_view full_path) {
  const std::u16string text = ToUtf16(full_path);
  std::u16string_view path = text;
  const std::shared_ptr<RegistryKey> from = TakeRoot(path);
  std::shared_ptr<RegistryKey> key = from ? Create(from, path).key : nullptr;
  if (!key) throw std::invalid_argument("no key can have the path " + std::string(full_path));
  return key;
}

const RegistryValue* Registry::FindValue(std::string_view full_path, std::string_view name) const {
  const std::shared_ptr<RegistryKey> key = Find(full_path);
  return key ? key->FindValue(ToUtf16(name)) : nullptr;
}

void Registry::SetDword(std::string_view full_path, std::string_view name, std::uint32_t value) {
  SetRaw(full_path, name, REG_DWORD, DwordData(value));
}

void Registry::SetString(std::string_view full_path, std::string_view name, std::string_view text) {
  SetRaw(full_path, name, REG_SZ, StringData(ToUtf16(text)));
}

void Registry::SetBinary(std::string_view full_path, std::string_view name,
                         std::vector<std::uint8_t> data) {
  SetRaw(full_path, name, REG_BINARY, std::move(data));
}

void Registry::SetRaw(std::string_view full_path, std::string_view name, std::uint32_t type,
                      std::vector<std::uint8_t> data) {
  Create(full_path)->SetValue(ToUtf16(name), type, std::move(data));
}

std::optional<std::uint32_t> Registry::GetDword(std::string_view full_path,
                                                std::string_view name) const {
  const RegistryValue* value = FindValue(full_path, name);
  return value == nullptr ? std::nullopt : DwordOf(*value);
}

std::optional<std::string> Registry::GetString(std::string_view full_path,
                                               std::string_view name) const {
  const RegistryValue* value = FindValue(full_path, name);
  if (value == nullptr || value->type != REG_SZ) return std::nullopt;
  const std::u16string text = UnitsOf(value->data);
  return ToUtf8(std::u16string_view(text).substr(0, text.find(u'\0')));
}

// It changes what the roots hold. NOLINTNEXTLINE(readability-make-member-function-const)
bool Registry::RemoveTree(std::string_view full_path) {
  const std::u16string text = ToUtf16(full_path);
  std::u16string_view path = text;
  const std::shared_ptr<RegistryKey> from = TakeRoot(path);
  return from && RemoveTree(from, path);
}

void Registry::CopyFrom(const Registry& other) {
  for (std::size_t root = 0; root < roots_.size(); ++root) {
    roots_.at(root) = other.roots_.at(root)->CopyBelow(nullptr);
  }
}

}  // namespace sim
