/**
 * @file palbeep.h
 * @brief The beeper: volumes and gains, the sounds of events, and the good-read indicator.
 * @family feedback
 *
 * Each of the six levels of PALVolumeLevel stands for a volume word, as waveOutSetVolume takes it,
 * and for a gain of the codec from 0 to 100. The words, the gains, the current levels and the sound
 * files are values under HKEY_LOCAL_MACHINE "Software\Dravonel\BeeperVol". Words and gains are
 * REG_DWORD; a sound file is a REG_SZ with its whole path. PALVolumeIndex numbers the rows of words
 * and gains. Where the word of a level cannot be read, a process goes on with the one that it has
 * read last. At first these are 0, 0x33333333, 0x66666666, 0x99999999, 0xCCCCCCCC and 0xFFFFFFFF.
 *
 * The good-read indicator, a PALGoodReadIndicator for each PALScanType, says how a good read is
 * felt and heard. It is the REG_DWORD "IntGRI", "TethGRI", "BTGRI" or "RFIDGRI" under
 * HKEY_LOCAL_MACHINE "SOFTWARE\Dravonel\PAL". Any other number than those of PALGoodReadIndicator
 * means no vibration and no tone.
 *
 * Any thread of any process may call these functions. PALBEEPInit and PALBEEPTerm are the
 * exception: no other call of the same process may overlap them. The library calls them when a
 * process attaches and detaches. The named mutex "DVLORQPAL_BEEP_MUTEX" keeps the beeps of all
 * processes apart. Each beep and PALBEEPTerm wait for it for at most 2000 ms, and then go on
 * without it. The other functions take no lock. Steps and failures are traced with facility 1003.
 */
#ifndef PALBEEP_H_
#define PALBEEP_H_

#include "palresult.h"
#include "paltypes.h"
#include "palvalues.h"

PAL_INTERFACE_BEGIN

/** The levels of loudness, and the two steps that PALBEEPSetVolume can make. */
typedef enum PALVolumeLevel {
  /** The word of the value "Off". */
  PAL_VOLUME_OFF = 0,
  /** The word of the value "VeryLow". */
  PAL_VOLUME_VERY_LOW = 1,
  /** The word of the value "Low". */
  PAL_VOLUME_LOW = 2,
  /** The word of the value "Med". */
  PAL_VOLUME_MEDIUM = 3,
  /** The word of the value "High". */
  PAL_VOLUME_HIGH = 4,
  /** The word of the value "VeryHigh". */
  PAL_VOLUME_VERY_HIGH = 5,
  /** One level softer. Only for PALBEEPSetVolume. */
  PAL_VOLUME_STEP_DOWN = 8,
  /** One level louder. Only for PALBEEPSetVolume. */
  PAL_VOLUME_STEP_UP = 9
} PALVolumeLevel;

/** The rows of volume words and gains. */
typedef enum PALVolumeIndex {
  /** The level off: "Off" and "OffGain". */
  PAL_VOLUME_INDEX_OFF = 0,
  /** The level very low: "VeryLow" and "VeryLowGain". */
  PAL_VOLUME_INDEX_VERY_LOW = 1,
  /** The level low: "Low" and "LowGain". */
  PAL_VOLUME_INDEX_LOW = 2,
  /** The level medium: "Med" and "MedGain". */
  PAL_VOLUME_INDEX_MEDIUM = 3,
  /** The level high: "High" and "HighGain". */
  PAL_VOLUME_INDEX_HIGH = 4,
  /** The level very high: "VeryHigh" and "VeryHighGain". */
  PAL_VOLUME_INDEX_VERY_HIGH = 5,
  /** The current setting of the speaker: "CurrentVol" and "CurGain". */
  PAL_VOLUME_INDEX_SPEAKER = 6,
  /** The default of the speaker: "DefaultVol" and "DefGain". */
  PAL_VOLUME_INDEX_SPEAKER_DEFAULT = 7,
  /** The current setting of the headset: "CurrentHeadset" and "CurHeadsetGain". */
  PAL_VOLUME_INDEX_HEADSET = 8,
  /** The default of the headset: "DefaultHeadset" and "DefaultHeadsetGain". */
  PAL_VOLUME_INDEX_HEADSET_DEFAULT = 9
} PALVolumeIndex;

/** What a good read does. A bad read with a tone has one tone, whatever the number of tones. */
typedef enum PALGoodReadIndicator {
  /** Nothing. */
  PAL_GRI_NONE = 0,
  /** One tone. */
  PAL_GRI_ONE_TONE = 1,
  /** Two tones. */
  PAL_GRI_TWO_TONES = 2,
  /** A vibration. */
  PAL_GRI_VIBRATION = 3,
  /** A vibration, then one tone. */
  PAL_GRI_VIBRATION_ONE_TONE = 4,
  /** A vibration, then two tones. */
  PAL_GRI_VIBRATION_TWO_TONES = 5
} PALGoodReadIndicator;

/**
 * Prepares the beeper for this process: creates or opens the mutex and reads the model's name.
 *
 * A second call keeps the mutex of the first. If the mutex cannot be created, which is traced,
 * every beep answers E_INVALIDARG.
 *
 * @retval S_OK  Always.
 */
HRESULT PALAPI PALBEEPInit(void);

/**
 * Closes the mutex, as soon as this process has it or after 2000 ms. Until the next PALBEEPInit
 * every beep answers E_INVALIDARG.
 *
 * @retval S_OK  Always.
 */
HRESULT PALAPI PALBEEPTerm(void);

/**
 * Sets the level of the speaker.
 *
 * The word of a level is copied to "CurrentVol" and set as the volume of the wave output. It is
 * also written to the REG_DWORD "Volume" under HKEY_CURRENT_USER "ControlPanel\Volume", where the
 * shell shows it, unless that value has it already. A step changes only "CurrentVol". A failure of
 * copying a level's word to "CurrentVol" is not reported.
 *
 * @param setting  [level] #PALVolumeLevel. PAL_VOLUME_STEP_DOWN changes nothing at the levels low
 *                 and off; PAL_VOLUME_STEP_UP changes nothing at the level very high.
 *
 * @retval S_OK    Set, or there was no further step.
 * @retval E_FAIL  @p setting is another number, and nothing was changed. Or the audio driver
 *                 refused the volume, or the value "Volume" cannot be read. For a step:
 *                 "CurrentVol" cannot be read or is the word of no level, or the next level has no
 *                 word.
 * @retval PAL_E_WIN32(error)  The error of writing "Volume"; for a step, of writing "CurrentVol".
 */
HRESULT PALAPI PALBEEPSetVolume(DWORD setting);

/**
 * Gives the level of the speaker: the lowest level that has the word of "CurrentVol". "CurrentVol"
 * is then written again with the word of that level.
 *
 * @param[out] level  [level] #PALVolumeLevel, 0 to 5. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  "CurrentVol" cannot be read or is the word of no level, or @p level is null.
 */
HRESULT PALAPI PALBEEPGetVolume(DWORD* level);

/**
 * Sets the level of the headset: copies a volume word to "CurrentHeadset".
 *
 * @param volume_index  #PALVolumeIndex. The first six are the levels.
 *
 * @retval S_OK    Copied.
 * @retval E_FAIL  The word cannot be read, or @p volume_index is above 9. Nothing was changed.
 * @retval PAL_E_WIN32(error)  The error of writing "CurrentHeadset".
 */
HRESULT PALAPI PALBEEPSetHeadsetBeeperVolume(DWORD volume_index);

/**
 * Gives the level of the headset: the lowest level that has the word of "CurrentHeadset".
 *
 * @retval E_FAIL  "CurrentHeadset" cannot be read or is the word of no level, or @p level is null.
 * @like PALBEEPGetVolume
 */
HRESULT PALAPI PALBEEPGetHeadsetBeeperVolume(DWORD* level);

/**
 * Sets the gain of a volume index.
 *
 * @param in_vol_index  #PALVolumeIndex.
 * @param in_gain       [percent] 0 to 100.
 *
 * @retval S_OK    Written.
 * @retval E_FAIL  A number is out of its range, or the value cannot be written.
 */
HRESULT PALAPI PALBEEPSetSpeakerGain(DWORD in_vol_index, DWORD in_gain);

/**
 * Gives the gain of a volume index, as it is stored.
 *
 * @param in_vol_index  #PALVolumeIndex.
 * @param[out] gain     [percent] Any number. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  The value cannot be read, @p in_vol_index is above 9, or @p gain is null.
 */
HRESULT PALAPI PALBEEPGetSpeakerGain(DWORD in_vol_index, DWORD* gain);

/**
 * Sets the gain of the headset, "CurHeadsetGain". Beeps do not use it: they use the gain of the
 * speaker's level with a headset too.
 *
 * @param gain  [percent] 0 to 100.
 *
 * @retval S_OK    Written.
 * @retval E_FAIL  @p gain is above 100, or the value cannot be written.
 */
HRESULT PALAPI PALBEEPSetHeadsetGain(DWORD gain);

/**
 * Gives the gain of the headset, "CurHeadsetGain", as it is stored.
 *
 * @retval E_FAIL  The value cannot be read, or @p gain is null.
 * @like PALBEEPGetSpeakerGain
 */
HRESULT PALAPI PALBEEPGetHeadsetGain(DWORD* gain);

/**
 * Sets the good-read indicator of a kind of scanner.
 *
 * @param scan_type  #PALScanType.
 * @param value      #PALGoodReadIndicator.
 *
 * @retval S_OK    Written.
 * @retval E_FAIL  A number is out of its range. Nothing was changed.
 * @retval PAL_E_WIN32(error)  The error of writing: PAL_E_FILE_NOT_FOUND if the key does not exist.
 */
HRESULT PALAPI PALBEEPSetGRI(DWORD scan_type, DWORD value);

/**
 * Gives the good-read indicator of a kind of scanner, as it is stored.
 *
 * @param scan_type   #PALScanType.
 * @param[out] value  #PALGoodReadIndicator, or any other number. Unchanged on failure. Not null.
 *
 * @retval S_OK    Answered.
 * @retval E_FAIL  @p scan_type is above 3, or @p value is null.
 * @retval PAL_E_WIN32(error)  The error of reading: PAL_E_FILE_NOT_FOUND if it was never set.
 */
HRESULT PALAPI PALBEEPGetGRI(DWORD scan_type, DWORD* value);

/**
 * Signals a good read as the indicator of its scanner says: vibrates with PALVIBVibrate, then plays
 * the file "GoodRead" once or twice, with a pause of 50 ms after each of two. Returns when the last
 * tone has ended.
 *
 * Every beep of this header sounds as follows:
 *
 * - The volume is that of the wave output. With a headset it is "CurrentHeadset", or 0x33333333 if
 *   that cannot be read in two attempts.
 * - A headset is there if the REG_DWORD "Bluetooth" under HKEY_LOCAL_MACHINE
 *   "System\State\Hardware" has a bit of 0x34 or cannot be read, or if "Headset" there is not 0.
 * - The gain is that of the speaker's level, or 66 if the level has no gain. The level is found as
 *   by PALBEEPGetVolume, which writes "CurrentVol" again. If "CurrentVol" is the word of no level,
 *   the gain of the codec is not changed.
 * - Nothing is heard at volume 0, with an empty path, or with a file that cannot be played. These
 *   are no failures.
 * - At the end volume and gain are set back to what they were. One that could not be read before
 *   is not set back.
 *
 * @param in_scan_type  #PALScanType.
 *
 * @retval S_OK          Done, or the indicator asks for nothing.
 * @retval E_INVALIDARG  @p in_scan_type is above 3, or there is no mutex (see PALBEEPInit). Nothing
 *                       was done.
 * @retval E_FAIL        The volume could not be set back, or could not be set to 0 for a silent
 *                       tone. Without a tone: the failure of the vibration.
 * @retval PAL_E_MORE_DATA  The path of the file has more than 520 bytes, or 260 units and no
 *                       terminator.
 * @retval PAL_E_WIN32(error)  The error of reading the path of the file: PAL_E_FILE_NOT_FOUND if
 *                       there is none. Without a tone: the error of reading the indicator or of the
 *                       vibration.
 */
HRESULT PALAPI PALBEEPGoodReadEx(DWORD in_scan_type);

/**
 * Signals a bad read as the indicator of the internal scanner says, whichever scanner failed:
 * vibrates five times, with a pause of 100 ms after each but the first, and plays the file
 * "BadRead" once. If the first vibration fails, the other four are left out. Of the results of the
 * vibrations the last one counts.
 *
 * @retval E_INVALIDARG  There is no mutex (see PALBEEPInit). Nothing was done.
 * @like PALBEEPGoodReadEx
 */
HRESULT PALAPI PALBEEPBadRead(void);

/**
 * Plays the file "ConfigChange": a configuration was changed.
 *
 * @retval S_OK          Done.
 * @retval E_INVALIDARG  There is no mutex (see PALBEEPInit). Nothing was done.
 * @retval E_FAIL        The volume could not be set back, or could not be set to 0 for a silent
 *                       tone.
 * @retval PAL_E_MORE_DATA  The path of the file has more than 520 bytes, or 260 units and no
 *                       terminator.
 * @retval PAL_E_WIN32(error)  The error of reading the path of the file: PAL_E_FILE_NOT_FOUND if
 *                       there is none.
 */
HRESULT PALAPI PALBEEPChangeConfig(void);

/**
 * Plays the file "ConfigChangeError": a configuration could not be changed.
 * @like PALBEEPChangeConfig
 */
HRESULT PALAPI PALBEEPChangeConfigError(void);
/** Plays the file "KeyClick": a key was pressed. @like PALBEEPChangeConfig */
HRESULT PALAPI PALBEEPKeyClick(void);

/**
 * Plays the file "TagSearch" again and again, until PALBEEPStopTagSearch or the end of the process.
 *
 * The call returns at once, and other beeps can follow. Volume and gain stay those of the beep
 * until the stop, even if nothing is heard. Another beep of the same process ends the sound. That
 * beep takes the volume and gain of the tag search for the former ones, and the stop then sets
 * these.
 *
 * @retval E_FAIL  The volume could not be set to 0 for a silent tone.
 * @like PALBEEPChangeConfig
 */
HRESULT PALAPI PALBEEPStartTagSearch(void);

/**
 * Stops the sound of the tag search, and sets volume and gain back. If this process has started no
 * tag search, volume and gain are not changed. A volume that could not be set back is set back by
 * the next stop.
 *
 * @retval S_OK          Done.
 * @retval E_INVALIDARG  There is no mutex (see PALBEEPInit). Nothing was done.
 * @retval E_FAIL        The volume could not be set back.
 * @retval PAL_E_WIN32(error)  The error of stopping the sound.
 */
HRESULT PALAPI PALBEEPStopTagSearch(void);

PAL_INTERFACE_END

#endif /* PALBEEP_H_ */
