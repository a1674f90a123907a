// The registry of the simulated device: a tree of keys. It has no locks; handles stand elsewhere.
#ifndef PLATFORM_SIM_KERNEL_REGISTRY_H_
#define PLATFORM_SIM_KERNEL_REGISTRY_H_

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/sim/kernel/named_list.h"

namespace sim {

struct RegistryValue {
  std::u16string name;  // empty: the unnamed value
  std::uint32_t type = 0;
  std::vector<std::uint8_t> data;
};

// The data of a REG_DWORD, and of a REG_SZ with its terminator.
[[nodiscard]] std::vector<std::uint8_t> DwordData(std::uint32_t number);
[[nodiscard]] std::vector<std::uint8_t> StringData(std::u16string_view text);
// The number of a REG_DWORD value of four bytes; nothing for any other value.
[[nodiscard]] std::optional<std::uint32_t> DwordOf(const RegistryValue& value);
// The UTF-16 units of the data, with all terminators. An odd last byte is left out.
[[nodiscard]] std::u16string UnitsOf(const std::vector<std::uint8_t>& data);

// Keys and values keep the order in which they were made, and their first spelling. They are found
// without regard to case.
class RegistryKey {
 public:
  RegistryKey(std::u16string name, RegistryKey* parent) : name_(std::move(name)), parent_(parent) {}
  ~RegistryKey();
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  [[nodiscard]] const std::u16string& name() const { return name_; }
  // "HKEY_LOCAL_MACHINE\Software\...", without doubled backslashes.
  [[nodiscard]] std::u16string Path() const;
  // True once the key was deleted from outside of the device: its handles can then only be closed.
  // The path of a deleted key is its name alone.
  [[nodiscard]] bool deleted() const { return deleted_; }
  // Handles count here, so that nobody deletes a key that is open. True where this key or one below
  // it is open.
  [[nodiscard]] bool IsOpen() const;
  void AddHandle() { ++handles_; }
  void RemoveHandle() { --handles_; }

  [[nodiscard]] const std::vector<std::shared_ptr<RegistryKey>>& keys() const {
    return keys_.items();
  }
  [[nodiscard]] const std::vector<RegistryValue>& values() const { return values_.items(); }
  [[nodiscard]] const RegistryValue* FindValue(std::u16string_view name) const;

  // A value that exists keeps its place and the spelling of its name.
  void SetValue(std::u16string_view name, std::uint32_t type, std::vector<std::uint8_t> data);
  bool DeleteValue(std::u16string_view name);

 private:
  friend class Registry;
  void Detach();  // marks this key and all below it as deleted
  [[nodiscard]] unsigned Depth() const;
  [[nodiscard]] std::shared_ptr<RegistryKey> CopyBelow(RegistryKey* parent) const;

  std::u16string name_;
  RegistryKey* parent_;
  bool deleted_ = false;
  unsigned handles_ = 0;
  NamedList<char16_t, std::shared_ptr<RegistryKey>> keys_;
  NamedList<char16_t, RegistryValue> values_;
};

class Registry {
 public:
  static constexpr unsigned kMaximumDepth = 16;  // of a key below its root
  static constexpr std::size_t kMaximumNameUnits = 255;
  enum class Removal : std::uint8_t { kDone, kMissing, kOpen };

  Registry();

  // Root 0 to 3 in the order of the predefined handles 0x80000000 and up.
  [[nodiscard]] const std::shared_ptr<RegistryKey>& root(unsigned index) const {
    return roots_.at(index);
  }
  // Finds a key by its path below another. Leading and repeated backslashes are skipped. An empty
  // path is the key itself. Below a deleted key there is nothing.
  [[nodiscard]] static std::shared_ptr<RegistryKey> Find(const std::shared_ptr<RegistryKey>& from,
                                                         std::u16string_view path);
  struct Created {
    std::shared_ptr<RegistryKey> key;
    bool is_new = false;
  };
  // No key, and nothing changes, below a deleted key, deeper than kMaximumDepth, and for a name
  // longer than kMaximumNameUnits.
  static Created Create(const std::shared_ptr<RegistryKey>& from, std::u16string_view path);
  // Deletes a key with everything below it, unless a part of it is open. A root is never deleted
  // (kMissing).
  static Removal Remove(const std::shared_ptr<RegistryKey>& from, std::u16string_view path);
  // Deletes it also where it is open; false where there is none, or only a root.
  static bool RemoveTree(const std::shared_ptr<RegistryKey>& from, std::u16string_view path);
  // The root that a full path begins with. Its name is removed from the path. nullptr: not a root.
  [[nodiscard]] std::shared_ptr<RegistryKey> TakeRoot(std::u16string_view& full_path) const;

  // For tests and tools. A full path begins with a root's name (or HKLM, HKCU, HKCR, HKU). A path
  // without a known root finds nothing. Create and the setters throw std::invalid_argument for such
  // a path, and for one that no key can have. GetDword and GetString find only values of their
  // type. A text ends at its first terminator.
  [[nodiscard]] std::shared_ptr<RegistryKey> Find(std::string_view full_path) const;
  std::shared_ptr<RegistryKey> Create(std::string_view full_path);
  [[nodiscard]] const RegistryValue* FindValue(std::string_view full_path,
                                               std::string_view name) const;
  void SetDword(std::string_view full_path, std::string_view name, std::uint32_t value);
  void SetString(std::string_view full_path, std::string_view name, std::string_view text);
  void SetBinary(std::string_view full_path, std::string_view name, std::vector<std::uint8_t> data);
  void SetRaw(std::string_view full_path, std::string_view name, std::uint32_t type,
              std::vector<std::uint8_t> data);
  [[nodiscard]] std::optional<std::uint32_t> GetDword(std::string_view full_path,
                                                      std::string_view name) const;
  [[nodiscard]] std::optional<std::string> GetString(std::string_view full_path,
                                                     std::string_view name) const;
  bool RemoveTree(std::string_view full_path);
  // Copies all keys and values of another registry.
  void CopyFrom(const Registry& other);

 private:
  std::array<std::shared_ptr<RegistryKey>, 4> roots_;
};

}  // namespace sim

#endif  // PLATFORM_SIM_KERNEL_REGISTRY_H_
