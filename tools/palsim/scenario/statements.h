// What each kind of statement does; the table of them is in statements.cpp.
#ifndef TOOLS_PALSIM_SCENARIO_STATEMENTS_H_
#define TOOLS_PALSIM_SCENARIO_STATEMENTS_H_

#include "tools/palsim/scenario/stage.h"

namespace palsim {

// Processes, their calls, and time.
void PlayStarts(Stage& stage, const Filled& filled);
void PlayEnds(Stage& stage, const Filled& filled);
void PlayKilled(Stage& stage, const Filled& filled);
void PlayCalls(Stage& stage, const Filled& filled);
void PlayRuns(Stage& stage, const Filled& filled);
void PlayBegins(Stage& stage, const Filled& filled);
void PlayWait(Stage& stage, const Filled& filled);
void PlayWaitFor(Stage& stage, const Filled& filled);
void PlayWaitUntil(Stage& stage, const Filled& filled);
void PlayWaitUntilTaken(Stage& stage, const Filled& filled);

// From outside.
void PlaySetVolume(Stage& stage, const Filled& filled);
void PlaySetGain(Stage& stage, const Filled& filled);
void PlaySetValue(Stage& stage, const Filled& filled);
void PlayDeleteValue(Stage& stage, const Filled& filled);
void PlaySignal(Stage& stage, const Filled& filled);
void PlayWriteFile(Stage& stage, const Filled& filled);
void PlayRemoveFile(Stage& stage, const Filled& filled);
void PlayFailCall(Stage& stage, const Filled& filled);
void PlayFailEveryCall(Stage& stage, const Filled& filled);
void PlayKillAtCall(Stage& stage, const Filled& filled);
void PlayNoMoreFaults(Stage& stage, const Filled& filled);
void PlayMoveBytes(Stage& stage, const Filled& filled);
void PlayRestart(Stage& stage, const Filled& filled);
void PlayPress(Stage& stage, const Filled& filled);
void PlayRelease(Stage& stage, const Filled& filled);
void PlayDock(Stage& stage, const Filled& filled);
void PlaySetParameter(Stage& stage, const Filled& filled);
void PlayNoParameter(Stage& stage, const Filled& filled);
void PlayNoDriver(Stage& stage, const Filled& filled);
void PlayNoLibrary(Stage& stage, const Filled& filled);
void PlayChangeTurns(Stage& stage, const Filled& filled);

// Properties.
void PlayCheckProperties(Stage& stage, const Filled& filled);
void PlayCheckProperty(Stage& stage, const Filled& filled);

// Expectations.
void ExpectReturned(Stage& stage, const Filled& filled);
void ExpectKilled(Stage& stage, const Filled& filled);
void ExpectArgument(Stage& stage, const Filled& filled);
void ExpectValue(Stage& stage, const Filled& filled);
void ExpectNoValue(Stage& stage, const Filled& filled);
void ExpectVolume(Stage& stage, const Filled& filled);
void ExpectGain(Stage& stage, const Filled& filled);
void ExpectNoLine(Stage& stage, const Filled& filled);
void ExpectLineCount(Stage& stage, const Filled& filled);
void ExpectLine(Stage& stage, const Filled& filled);
void ExpectLed(Stage& stage, const Filled& filled);
void ExpectEngine(Stage& stage, const Filled& filled);
void ExpectRotation(Stage& stage, const Filled& filled);
void ExpectBootOption(Stage& stage, const Filled& filled);
void ExpectUsbClient(Stage& stage, const Filled& filled);
void ExpectDefaultUsbClient(Stage& stage, const Filled& filled);
void ExpectButton(Stage& stage, const Filled& filled);
void ExpectRestart(Stage& stage, const Filled& filled);
void ExpectNoRestart(Stage& stage, const Filled& filled);
void LookFromHere(Stage& stage, const Filled& filled);
void LookFromTheStart(Stage& stage, const Filled& filled);

}  // namespace palsim

#endif  // TOOLS_PALSIM_SCENARIO_STATEMENTS_H_
