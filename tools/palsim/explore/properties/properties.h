// Each property stands in a file of its own.
#ifndef TOOLS_PALSIM_EXPLORE_PROPERTIES_PROPERTIES_H_
#define TOOLS_PALSIM_EXPLORE_PROPERTIES_PROPERTIES_H_

#include <memory>

#include "tools/palsim/explore/property.h"

namespace palsim {

std::unique_ptr<Property> AnswersAreListed();
std::unique_ptr<Property> ErrorsAreOfCalls();
std::unique_ptr<Property> PlatformIsUsedRightly();
std::unique_ptr<Property> NobodyWaitsForEver();
std::unique_ptr<Property> CallsLeaveNothing();
std::unique_ptr<Property> WaitsAreDocumented();
std::unique_ptr<Property> RoomIsKept();
std::unique_ptr<Property> LevelsComeBack();
std::unique_ptr<Property> GettersAnswerSetters();
std::unique_ptr<Property> PlanesAreWhole();
std::unique_ptr<Property> OriginalsAreKept();
std::unique_ptr<Property> CommandsKeepTheirRest();
std::unique_ptr<Property> ChecksumsFollowImports();
std::unique_ptr<Property> RestartsLoseNothing();
std::unique_ptr<Property> WrongPasswordsAreWrong();
std::unique_ptr<Property> UnsupportedButtonsStay();
std::unique_ptr<Property> NothingElseIsStored();
std::unique_ptr<Property> ValuesAreOldOrNew();
std::unique_ptr<Property> NextProcessWorks();
std::unique_ptr<Property> ProgramsHold();

}  // namespace palsim

#endif  // TOOLS_PALSIM_EXPLORE_PROPERTIES_PROPERTIES_H_
