#include "configstore/dcecfg_parser.h"

#include "configstore/dcecfg_format.h"
#include "configstore/dcecfg_sections.h"

namespace pal {

using dcecfg::kTrace;

HRESULT CDCECFGParser::Load(std::span<const BYTE> data) {
  records_.Clear();
  if (!reader_.Load(data)) {
    kTrace.Error("CDCECFGParser: Config Store DCECFG too large");
    return E_FAIL;
  }
  kTrace.Info("CDCECFGParser: Config Store DCECFG present");
  return S_OK;
}

HRESULT CDCECFGParser::ParseFile() {
  reader_.Rewind();
  records_.Clear();
  HRESULT result = S_OK;
  while (reader_.HasByte()) {
    if (reader_.At(dcecfg::kDirectSection)) {
      dcecfg::ParseDirectSection(reader_, records_);
      result = S_OK;
    } else if (reader_.At(dcecfg::kDscpSection)) {
      result = dcecfg::ParseDscpSection(reader_, records_);
    } else {
      reader_.Advance();
    }
  }
  kTrace.Info("CDCECFGParser::ParseFile. Config store file parsing complete");
  return result;
}

}  // namespace pal
