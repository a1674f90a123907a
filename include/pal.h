/**
 * @file pal.h
 * @brief The whole exported interface of DVLORQPAL.dll, one header per family.
 */
#ifndef PAL_H_
#define PAL_H_

#include "palboot.h"
#include "palcomxpwr.h"
#include "palimagecapture.h"
#include "palmfgopt.h"
#include "palonewire.h"
#include "palreg.h"
#include "palstore.h"
#include "palsysinfo.h"

#endif /* PAL_H_ */
