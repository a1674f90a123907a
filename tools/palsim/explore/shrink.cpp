#include "tools/palsim/explore/shrink.h"

#include <algorithm>
#include <set>
#include <string>

namespace palsim {
namespace {

using IsViolated = std::function<bool(const Moves& moves)>;

std::set<std::string> ProcessesOf(const Moves& moves) {
  std::set<std::string> processes;
  for (const Move& move : moves) processes.insert(move.process);
  processes.erase("");
  return processes;
}

void LeaveOutProcesses(Moves& moves, const IsViolated& is_violated) {
  for (const std::string& process : ProcessesOf(moves)) {
    Moves without = moves;
    std::erase_if(without, [&](const Move& move) { return move.process == process; });
    if (is_violated(without)) moves = std::move(without);
  }
}

// One process does what several did.
void JoinProcesses(Moves& moves, const IsViolated& is_violated) {
  const std::set<std::string> processes = ProcessesOf(moves);
  if (processes.size() < 2) return;
  const std::string& one = *processes.begin();
  Moves joined = moves;
  for (Move& move : joined) {
    if (move.process.empty()) continue;
    if (move.kind == Move::Kind::kStatement) move.text.replace(0, move.process.size(), one);
    move.process = one;
  }
  if (is_violated(joined)) moves = std::move(joined);
}

// Leaves out parts of one size; whether any could be left out.
bool LeaveOutParts(Moves& moves, std::size_t size, const IsViolated& is_violated) {
  bool any = false;
  for (std::size_t begin = 0; begin < moves.size();) {
    Moves without = moves;
    const auto first = without.begin() + static_cast<std::ptrdiff_t>(begin);
    without.erase(first, first + static_cast<std::ptrdiff_t>(std::min(size, moves.size() - begin)));
    if (is_violated(without)) {
      moves = std::move(without);
      any = true;
    } else {
      begin += size;
    }
  }
  return any;
}

// A call that was begun is made to its end.
void MakeCallsPlain(Moves& moves, const IsViolated& is_violated) {
  for (std::size_t at = 0; at < moves.size(); ++at) {
    if (moves[at].kind != Move::Kind::kBegin) continue;
    Moves plain = moves;
    plain[at].kind = Move::Kind::kCall;
    plain[at].as.clear();
    if (is_violated(plain)) moves = std::move(plain);
  }
}

}  // namespace

Moves Shrink(Moves moves, const IsViolated& is_violated) {
  LeaveOutProcesses(moves, is_violated);
  for (std::size_t size = moves.size() / 2; size > 0;) {
    const bool any = LeaveOutParts(moves, size, is_violated);
    if (size > 1 || !any) size /= 2;
  }
  JoinProcesses(moves, is_violated);
  MakeCallsPlain(moves, is_violated);
  while (LeaveOutParts(moves, 1, is_violated)) {
  }
  return moves;
}

}  // namespace palsim
