#include <algorithm>

#include "configstore/dcecfg_parser.h"
#include "configstore/dcecfg_sections.h"
#include "frame/unique_handle.h"

namespace pal {

using dcecfg::kTrace;

HRESULT CDCECFGParser::Load() {
  records_.Clear();
  reader_.Clear();
  const UniqueFile file(CreateFileW(TEXT("\\ConfigStore\\dcecfg"), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) {
    kTrace.Error("CDCECFGParser: Config Store DCECFG not present");
    return E_FAIL;
  }
  BYTE data[kBufferSize];
  DWORD bytes_read = 0;
  if (!ReadFile(file.get(), data, sizeof(data), &bytes_read, nullptr)) {
    kTrace.Error("CDCECFGParser: Config Store DCECFG cannot be read. win32err: 0x%x",
                 GetLastError());
    return E_FAIL;
  }
  return Load(std::span<const BYTE>(data, std::min<size_t>(bytes_read, sizeof(data))));
}

}  // namespace pal
