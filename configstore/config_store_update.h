// Writing the settings of the configuration store to the registry.
#ifndef CONFIGSTORE_CONFIG_STORE_UPDATE_H_
#define CONFIGSTORE_CONFIG_STORE_UPDATE_H_

#include "platform/wince.h"

namespace pal {

// Reads "\ConfigStore\dcecfg" and writes each of its keys, in file order, once all of it has been
// parsed. Failures of single registry writes are not reported.
//
// S_OK    done; also, deliberately, where there is no memory for the parser
// E_FAIL  the file is missing, cannot be read, holds 1024 bytes or more, or ends inside a DSCP
//         section; nothing was written
[[nodiscard]] HRESULT ConfigStoreRegUpdate();

}  // namespace pal

#endif  // CONFIGSTORE_CONFIG_STORE_UPDATE_H_
