// An image for Windows CE on ARM, in the memory of an ARM host.
#ifndef PLATFORM_DEVICE_LOADER_IMAGE_H_
#define PLATFORM_DEVICE_LOADER_IMAGE_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

// The content of a file or of memory, which nobody reads beyond its end.
class Bytes {
 public:
  explicit Bytes(std::span<std::byte> bytes) : bytes_(bytes) {}

  template <typename Number>
  [[nodiscard]] Number& At(std::size_t at) const {
    return *reinterpret_cast<Number*>(Part(at, sizeof(Number)).data());
  }
  [[nodiscard]] std::span<std::byte> Part(std::size_t at, std::size_t size) const {
    if (at > bytes_.size() || size > bytes_.size() - at)
      throw std::runtime_error("it is cut short");
    return bytes_.subspan(at, size);
  }
  [[nodiscard]] std::string TextAt(std::size_t at) const;
  [[nodiscard]] std::span<std::byte> all() const { return bytes_; }

 private:
  std::span<std::byte> bytes_;
};

// The image is relocated to an address that the host chose, and its imports lead to the simulated
// device. Addresses in it are counted from its begin.
class Image {
 public:
  // Throws std::runtime_error, with the file's name and the cause, where the file is no such image,
  // or where the simulated device lacks an import.
  explicit Image(const std::filesystem::path& file);
  ~Image();
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // nullptr for a name that the image does not export.
  [[nodiscard]] void* Export(const std::string& name) const;
  [[nodiscard]] void* Entry() const { return &memory_.At<std::byte>(entry_); }
  [[nodiscard]] bool Contains(const void* address) const;
  // Gives the writable sections their first content again.
  void Reset();

 private:
  struct Directory {
    std::uint32_t begin = 0;
    std::uint32_t size = 0;
  };
  struct Writable {
    std::span<std::byte> section;
    std::vector<std::byte> at_first;
  };

  void Load(const Bytes& file);
  void Allocate(std::size_t size);
  void LoadSection(const Bytes& file, std::size_t header);
  void Relocate(std::uint32_t distance, const Directory& blocks);
  void Bind(const Directory& imports);
  void ReadExports(const Directory& exports);
  void Protect();

  std::shared_ptr<void> mapping_;
  Bytes memory_{{}};
  std::uint32_t entry_ = 0;
  std::map<std::string, std::uint32_t> exports_;
  std::vector<std::span<std::byte>> code_;
  std::vector<Writable> writable_;
};

}  // namespace sim

#endif  // PLATFORM_DEVICE_LOADER_IMAGE_H_
