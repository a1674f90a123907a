#include "tools/palsim/explore/properties/properties.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "tools/palsim/nearest.h"
#include "tools/palsim/usage_error.h"

namespace palsim {
namespace {

constexpr std::array kProperties{
    PropertyRow{"answers-are-listed", "Every answer is one that the header lists for its export.",
                &AnswersAreListed},
    PropertyRow{"errors-are-of-calls",
                "A Win32 error in an answer is one that a platform call has given.",
                &ErrorsAreOfCalls},
    PropertyRow{"platform-is-used-rightly",
                "No handle is used wrongly or left behind, and no platform call is misused.",
                &PlatformIsUsedRightly},
    PropertyRow{"nobody-waits-for-ever", "No thread waits for ever.", &NobodyWaitsForEver},
    PropertyRow{"calls-leave-nothing", "A call leaves no mutex, no handle and no memory behind.",
                &CallsLeaveNothing},
    PropertyRow{"waits-are-documented", "No export takes longer than its documented waits.",
                &WaitsAreDocumented},
    PropertyRow{"room-is-kept", "Nothing is written behind the room of a caller's buffer.",
                &RoomIsKept},
    PropertyRow{"levels-come-back", "Volume and gain after a beep are those before it.",
                &LevelsComeBack},
    PropertyRow{"getters-answer-setters",
                "A getter answers what the last setter of any process has stored.",
                &GettersAnswerSetters},
    PropertyRow{"planes-are-whole", "A shift plane of whole records stays one.", &PlanesAreWhole},
    PropertyRow{"originals-are-kept", "Every saved record of a button is the factory's.",
                &OriginalsAreKept},
    PropertyRow{"commands-keep-their-rest",
                "A CAB package's command changes in its first seven characters only.",
                &CommandsKeepTheirRest},
    PropertyRow{"checksums-follow-imports",
                "The checksum of a registry file changes only with its import.",
                &ChecksumsFollowImports},
    PropertyRow{"restarts-lose-nothing", "A restart loses nothing that is stored.",
                &RestartsLoseNothing},
    PropertyRow{"wrong-passwords-are-wrong", "A wrong password is never right, whatever fails.",
                &WrongPasswordsAreWrong},
    PropertyRow{"unsupported-buttons-stay",
                "Nothing is written for a button that is not supported, whatever fails.",
                &UnsupportedButtonsStay},
    PropertyRow{"nothing-else-is-stored",
                "Nothing is stored that a call would not store where nothing fails.",
                &NothingElseIsStored},
    PropertyRow{"values-are-old-or-new",
                "Whatever fails, a value is the old one or the new one and none between.",
                &ValuesAreOldOrNew},
    PropertyRow{"next-process-works",
                "After a process was killed the next one does the same as if there had been none.",
                &NextProcessWorks},
    PropertyRow{"programs-hold", "What a program of one's own takes for granted holds.",
                &ProgramsHold},
};

}  // namespace

std::span<const PropertyRow> Properties() {
  return kProperties;
}

const PropertyRow& FindProperty(std::string_view name) {
  const auto* const row = std::ranges::find(kProperties, name, &PropertyRow::name);
  if (row != kProperties.end()) return *row;
  std::vector<std::string_view> names(kProperties.size());
  std::ranges::transform(kProperties, names.begin(), &PropertyRow::name);
  throw UsageError(fmt::format("there is no property '{}'{}", name, DidYouMean(name, names)));
}

}  // namespace palsim
