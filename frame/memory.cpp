// The library's own operator new and delete: the platform's are not reliable by name. There is no
// operator new that throws, so that a use of it does not link.
#include <cstdlib>
#include <new>

void* operator new(std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(bytes != 0 ? bytes : 1);
}
void* operator new[](std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(bytes != 0 ? bytes : 1);
}

// NOLINTNEXTLINE(misc-new-delete-overloads): see above
void operator delete(void* block) noexcept {
  std::free(block);
}
// NOLINTNEXTLINE(misc-new-delete-overloads): see above
void operator delete[](void* block) noexcept {
  std::free(block);
}
void operator delete(void* block, std::size_t /*bytes*/) noexcept {
  std::free(block);
}
void operator delete[](void* block, std::size_t /*bytes*/) noexcept {
  std::free(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
  std::free(block);
}
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
  std::free(block);
}
