// Memory that is wiped after use.
#ifndef SECURITY_SECRET_BYTES_H_
#define SECURITY_SECRET_BYTES_H_

#include <memory>
#include <new>
#include <span>

#include "platform/wince.h"

namespace pal {

// The pointer is volatile, so that the compiler keeps the writes.
inline void Wipe(std::span<BYTE> bytes) {
  volatile BYTE* const begin = bytes.data();
  for (size_t at = 0; at < bytes.size(); ++at) begin[at] = 0;
}

// A block of the heap that is wiped before it is freed.
class SecretBytes {
 public:
  SecretBytes() = default;
  ~SecretBytes() { Wipe({block_.get(), allocated_}); }
  SecretBytes(const SecretBytes&) = delete;
  SecretBytes& operator=(const SecretBytes&) = delete;

  // May be called once. False where there is no memory.
  [[nodiscard]] bool Allocate(DWORD bytes) {
    block_.reset(new (std::nothrow_t{}) BYTE[bytes]());
    allocated_ = size_ = block_ == nullptr ? 0 : bytes;
    return block_ != nullptr;
  }
  // Sets the number of bytes in use; it never grows.
  void Shorten(DWORD bytes) { size_ = bytes < size_ ? bytes : size_; }

  [[nodiscard]] BYTE* data() { return block_.get(); }
  [[nodiscard]] DWORD size() const { return size_; }
  [[nodiscard]] std::span<const BYTE> bytes() const { return {block_.get(), size_}; }

 private:
  std::unique_ptr<BYTE[]> block_;
  DWORD allocated_ = 0;
  DWORD size_ = 0;
};

}  // namespace pal

#endif  // SECURITY_SECRET_BYTES_H_
