#include "tools/palsim/scenario/statements.h"

namespace palsim {

// Of two forms that a line could have, the one that stands first holds.
const std::vector<StatementForm>& StatementForms() {
  static const std::vector<StatementForm> forms{
      {"title TITLE...", "what the page of the run is called", nullptr},
      {"about ABOUT...", "a paragraph below the title; there may be several", nullptr},
      {"device SAMPLE", "the sample device that the scenario is written for", nullptr},

      {"PROCESS starts", "a process loads the library; 'scanner' is scanner.exe", &PlayStarts},
      {"PROCESS ends", "it detaches and ends", &PlayEnds},
      {"PROCESS is killed", "it ends where it is, without detaching", &PlayKilled},
      {"PROCESS calls EXPORT ARGUMENTS...", "a call that runs to its end", &PlayCalls},
      {"PROCESS begins EXPORT ARGUMENTS... as CALL",
       "a call in a thread of its own, under a name of its own", &PlayBegins},
      {"PROCESS begins EXPORT ARGUMENTS...", "a call in a thread of its own", &PlayBegins},

      {"wait for CALL", "until a call that was begun has returned, by its name or its process",
       &PlayWaitFor},
      {"wait TIME", "time passes: 120 ms, 2 s", &PlayWait},
      {"wait until PROCESS takes MUTEX", "since the last call, or from now on",
       &PlayWaitUntilTaken},
      {"wait until EFFECT TEXT...", "until the journal has this line, since the last call",
       &PlayWaitUntil},

      {"set volume = NUMBER", "the wave volume changes", &PlaySetVolume},
      {"set gain = NUMBER", "the codec's gain changes", &PlaySetGain},
      {"set VALUE = DATA...", R"(a registry value becomes 5, "a text", or hex 0A 01)",
       &PlaySetValue},
      {"delete VALUE", "a registry value goes", &PlayDeleteValue},
      {"signal EVENT", "a named event is set", &PlaySignal},
      {"write PATH = TEXT...", "a file gets this content", &PlayWriteFile},
      {"remove PATH", "a file or folder goes", &PlayRemoveFile},
      {"fail call COUNT of API with error NUMBER", "counted from here", &PlayFailCall},
      {"fail call COUNT of API", "with error 31", &PlayFailCall},
      {"fail every call of API with error NUMBER", "from here on", &PlayFailEveryCall},
      {"fail every call of API", "with error 31", &PlayFailEveryCall},
      {"kill at call COUNT of API", "the process that makes it ends there", &PlayKillAtCall},
      {"no more faults", "forgets those that were planned", &PlayNoMoreFaults},

      {"expect CALL returned RESULT...",
       "S_OK, E_FAIL, PAL_KEY_E_NOT_SUPPORTED, PAL_E_WIN32(2), or a number", &ExpectReturned},
      {"expect CALL was killed", "its process, or the device, ended under it", &ExpectKilled},
      {"expect CALL argument COUNT = DATA...", "what an out-parameter holds, from 1",
       &ExpectArgument},
      {"expect value VALUE = DATA...", "what the registry holds now", &ExpectValue},
      {"expect no value VALUE", "the registry does not have it now", &ExpectNoValue},
      {"expect volume NUMBER", "the wave volume now", &ExpectVolume},
      {"expect gain NUMBER", "the codec's gain now", &ExpectGain},
      {"expect led NUMBER is LIGHT", "what an LED does now: off, on or blink", &ExpectLed},
      {"expect engine PART is STATE...",
       "power off, on; scanning disabled, enabled; operation normal, flash download; trigger "
       "released, pulled",
       &ExpectEngine},
      {"expect rotation NUMBER", "how the screen stands now, in degrees", &ExpectRotation},
      {"expect boot option NUMBER", "what the configuration driver keeps now", &ExpectBootOption},
      {"expect usb client CLIENT", "what the device is to a USB host now, or none",
       &ExpectUsbClient},
      {"expect default usb client CLIENT", "what it is after a restart, or none",
       &ExpectDefaultUsbClient},
      {"expect button NUMBER signals EVENTS...",
       "on a change, and while it is held: DeltaLeftScan, StateLeftScan; or nothing",
       &ExpectButton},
      {"expect restart KIND", "the device has restarted once more, warm or cold", &ExpectRestart},
      {"expect no restart", "it has not, since the last one expected", &ExpectNoRestart},
      {"expect no EFFECT TEXT...", "the journal has no such line", &ExpectNoLine},
      {"expect COUNT times EFFECT TEXT...", "how many such lines it has", &ExpectLineCount},
      {"expect EFFECT TEXT... by PROCESS at TIME", "by whom and when", &ExpectLine},
      {"expect EFFECT TEXT... by PROCESS after DELAY", "by whom and how long after", &ExpectLine},
      {"expect EFFECT TEXT... by PROCESS", "by whom", &ExpectLine},
      {"expect EFFECT TEXT... at TIME", "when, since the run began", &ExpectLine},
      {"expect EFFECT TEXT... after DELAY", "how long after the line found before", &ExpectLine},
      {"expect EFFECT TEXT...", "the next such line behind the one found before; * is any text",
       &ExpectLine},
      {"from here", "expectations look at what follows alone", &LookFromHere},
      {"from the start", "they look at the whole run again", &LookFromTheStart},
  };
  return forms;
}

}  // namespace palsim
