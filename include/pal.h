/**
 * @file pal.h
 * @brief The whole exported interface of DVLORQPAL.dll, one header per family.
 */
#ifndef PAL_H_
#define PAL_H_

#include "palbeep.h"
#include "palboot.h"
#include "palcomxpwr.h"
#include "paldevcap.h"
#include "paldisp.h"
#include "palimagecapture.h"
#include "palkey.h"
#include "palled.h"
#include "palmfgopt.h"
#include "palonewire.h"
#include "palpwr.h"
#include "palreg.h"
#include "palresult.h"
#include "palscan.h"
#include "palsecurity.h"
#include "palstore.h"
#include "palsysinfo.h"
#include "palsysio.h"
#include "paluart.h"
#include "palvalues.h"
#include "palver.h"
#include "palvib.h"

#endif /* PAL_H_ */
