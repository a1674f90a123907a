// The library's version.
#ifndef FRAME_VERSION_H_
#define FRAME_VERSION_H_

namespace pal {

inline constexpr const char* kLibraryVersion = "0.0.0.0";

}  // namespace pal

#endif  // FRAME_VERSION_H_
