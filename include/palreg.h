/**
 * @file palreg.h
 * @brief Registry files.
 *
 * Provisioning ships registry files (texts in the platform's import format) for the data-collection
 * stack. They are imported by the device's own importer program, "\Windows\orqautoreg.exe", and
 * only when their content has changed since the last import. The function may be called from any
 * thread of any process. It takes no lock: provisioning runs one process at a time.
 */
#ifndef PALREG_H_
#define PALREG_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Imports a registry file if it is meant for this device and has changed since its last import.
 *
 * A file whose name holds none of the family tags (RM21, RM18, RMV, RMX14, RM13, RM11, RM10, P7,
 * P8, in any case) is meant for every device. Any other is meant for the models whose family it
 * names: RM21 for RM19 to RM23, RM18 for RM16 to RM18, RM11 for RM11 and RM12F, RMV, RM13 and RM10
 * for their own; files tagged RMX14, P7 or P8 alone are imported nowhere. The model is the device's
 * non-volatile parameter 0x00D5.
 *
 * What the file held at its last import is told by a checksum, a REG_DWORD under
 * HKEY_LOCAL_MACHINE\Software\Dravonel\REGCHKSUMS named as the file. It is stored once the importer
 * has ended, however it ended; deleting it forces the next import. A file that cannot be read has
 * the checksum 0 and is otherwise treated as any other. The call waits for the importer for at most
 * 120000 ms. Progress and failures are traced with facility 1118.
 *
 * @param directory   where the file lies, without a backslash at its end; not null. With the file's
 *                    name and the backslash between them at most 259 units
 * @param file_name   the file's name; neither null nor empty
 * @param clear_trees not 0: before the import, and only where there is one, the trees that a full
 *                    import replaces are deleted below HKEY_LOCAL_MACHINE\Software\Dravonel:
 *                    ADCGroupConfig, ADCGroups, Decodes, Drivers, RUM, SRAutoLaunch,
 *                    SRConfigCommands, SRRegComComponents and VersionedFiles. A tree that cannot be
 *                    deleted stays as far as it is not deleted yet
 *
 * @retval S_OK   imported; or not changed since the last import; or not meant for this device
 * @retval E_FAIL a null, empty or over-long name (nothing was started or changed); the model cannot
 *                be read; the importer cannot be started or has not ended in time (no checksum was
 *                stored, so that the next call imports again)
 */
HRESULT PALAPI PALREG_LoadRegistry(const WCHAR* directory, const WCHAR* file_name,
                                   DWORD clear_trees);

PAL_INTERFACE_END

#endif /* PALREG_H_ */
