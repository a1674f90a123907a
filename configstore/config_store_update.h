// Writing the settings of the configuration store to the registry.
#ifndef CONFIGSTORE_CONFIG_STORE_UPDATE_H_
#define CONFIGSTORE_CONFIG_STORE_UPDATE_H_

#include "platform/wince.h"

namespace pal {

// Parses all of "\ConfigStore\dcecfg", and then writes its keys in file order. Failures of single
// registry writes are not reported.
//
// S_OK    done; also where there is no memory for the parser
// E_FAIL  the file is missing, cannot be read, has 1024 bytes or more, or ends inside a DSCP
//         section; nothing was written
[[nodiscard]] HRESULT ConfigStoreRegUpdate();

}  // namespace pal

#endif  // CONFIGSTORE_CONFIG_STORE_UPDATE_H_
