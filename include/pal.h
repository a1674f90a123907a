/**
 * @file pal.h
 * @brief The whole exported interface of DVLORQPAL.dll, one header per family.
 */
#ifndef PAL_H_
#define PAL_H_

#include "palbeep.h"
#include "palled.h"
#include "palmfgopt.h"
#include "palonewire.h"
#include "palreg.h"
#include "palsysinfo.h"
#include "palvib.h"

#endif /* PAL_H_ */
