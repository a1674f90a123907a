// Loads the library that is made for the handheld.
#include <string_view>

#include "platform/device/loader/image.h"
#include "platform/device/loader/kernel_page.h"
#include "platform/sim/kernel/loaded_library.h"

namespace sim {
namespace {

class HandheldLibrary : public LoadedLibrary {
 public:
  explicit HandheldLibrary(const std::filesystem::path& library) : image_(library) {}

  [[nodiscard]] void* Symbol(const char* name) const override {
    return name == std::string_view("DllMain") ? image_.Entry() : image_.Export(name);
  }
  [[nodiscard]] bool Contains(const void* address) const override {
    return image_.Contains(address);
  }
  void Reset() override { image_.Reset(); }

 private:
  Image image_;
};

}  // namespace

const char* const kLibraryExtension = ".dll";

std::unique_ptr<LoadedLibrary> LoadLibraryFile(const std::filesystem::path& library) {
  AnswerForKernelPage();
  return std::make_unique<HandheldLibrary>(library);
}

}  // namespace sim
