/**
 * @file palreg.h
 * @brief Registry files.
 * @family configstore
 *
 * Provisioning brings registry files for the data-collection stack: texts in the import format of
 * the platform. The importer of the device, "\Windows\orqautoreg.exe", imports them, and only if
 * their content has changed since the last import. Any thread of any process may call. No lock is
 * taken: run provisioning in one process at a time.
 */
#ifndef PALREG_H_
#define PALREG_H_

#include "palresult.h"
#include "paltypes.h"

PAL_INTERFACE_BEGIN

/**
 * Imports a registry file if it is meant for this device and has changed since its last import.
 *
 * The name of the file says for which models it is meant. The family tags are RM21, RM18, RMV,
 * RMX14, RM13, RM11, RM10, P7 and P8, in any case. A file without a tag in its name is meant for
 * every device. RM21 stands for the models RM19 to RM23, RM18 for RM16 to RM18, RM11 for RM11 and
 * RM12F; RMV, RM13 and RM10 stand for the models of that name. A file with only RMX14, P7 or P8 is
 * never imported. The model is the non-volatile parameter 0x00D5.
 *
 * A checksum tells whether the file has changed. It is a REG_DWORD under HKEY_LOCAL_MACHINE
 * "Software\Dravonel\REGCHKSUMS", with the name of the file. It is stored after the importer has
 * ended, whatever the importer's own result was. If it cannot be read, the file counts as changed.
 * If it cannot be stored, this is traced, and the next call imports again. To force an import,
 * delete it. A file that cannot be read has the checksum 0, and is otherwise treated as any other.
 * Progress and failures are traced with facility 1118.
 *
 * @param directory    The folder of the file, without a backslash at its end. Not null. Together
 *                     with a backslash and the name of the file at most 259 units.
 * @param file_name    The name of the file. Neither null nor empty.
 * @param clear_trees  Not 0: before an import these trees below HKEY_LOCAL_MACHINE
 *                     "Software\Dravonel" are deleted: ADCGroupConfig, ADCGroups, Decodes, Drivers,
 *                     RUM, SRAutoLaunch, SRConfigCommands, SRRegComComponents and VersionedFiles. A
 *                     failure ends the deletion of its tree, and what is deleted by then stays so.
 *
 * @retval S_OK    Imported, whether or not the checksum could be stored. Or not changed since the
 *                 last import, or not meant for this device.
 * @retval E_FAIL  A name is null, empty or too long, and nothing was started or changed. Or the
 *                 model cannot be read. Or the importer cannot be started, or has not ended within
 *                 120,000 ms; no checksum was stored, and the next call imports again.
 */
HRESULT PALAPI PALREG_LoadRegistry(const WCHAR* directory, const WCHAR* file_name,
                                   DWORD clear_trees);

PAL_INTERFACE_END

#endif /* PALREG_H_ */
