// The way of an exception through an image. A process that is killed ends by one, from a platform
// call. A handheld has no such tables: they stand in a file beside the image.
#ifndef PLATFORM_DEVICE_LOADER_UNWINDING_H_
#define PLATFORM_DEVICE_LOADER_UNWINDING_H_

#include <filesystem>

#include "platform/device/loader/image.h"

namespace sim {

// Copies the file's tables behind the image, where it was linked to have them. Throws
// std::runtime_error where the file is missing or damaged.
void AddUnwindingTables(const Bytes& memory, const std::filesystem::path& file);
void RemoveUnwindingTables(const Bytes& memory);

}  // namespace sim

#endif  // PLATFORM_DEVICE_LOADER_UNWINDING_H_
