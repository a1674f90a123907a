#include <algorithm>

#include "tests/support/export_rows.h"

namespace {
constexpr std::size_t kGuardBytes = 16;
constexpr std::uint8_t kGuard = 0xA5;
constexpr std::uint8_t kUntouched = 0xCD;
}  // namespace

std::uint8_t* Room::Take(DWORD bytes) {
  Block block;
  block.before.assign(kGuardBytes + bytes + kGuardBytes, kGuard);
  std::fill_n(block.before.begin() + kGuardBytes, bytes, kUntouched);
  block.bytes = block.before;
  blocks_.push_back(std::move(block));
  return blocks_.back().bytes.data() + kGuardBytes;
}

DWORD* Room::InOut(DWORD number) {
  std::uint8_t* place = Take(sizeof(number));
  Block& block = blocks_.back();
  for (std::size_t at = 0; at < sizeof(number); ++at) {
    block.before.at(kGuardBytes + at) = static_cast<std::uint8_t>(number >> (8 * at));
  }
  block.bytes = block.before;
  return reinterpret_cast<DWORD*>(place);
}

bool Room::GuardsHold() const {
  return std::ranges::all_of(blocks_, [](const Block& block) {
    return std::equal(block.bytes.begin(), block.bytes.begin() + kGuardBytes,
                      block.before.begin()) &&
           std::equal(block.bytes.rbegin(), block.bytes.rbegin() + kGuardBytes,
                      block.before.rbegin());
  });
}

bool Room::IsUntouched() const {
  return std::ranges::all_of(blocks_,
                             [](const Block& block) { return block.bytes == block.before; });
}

bool Room::Holds(DWORD number) const {
  return std::ranges::all_of(blocks_, [number](const Block& block) {
    return *reinterpret_cast<const DWORD*>(block.bytes.data() + kGuardBytes) == number;
  });
}

bool Room::HoldsTheSameAs(const Room& other) const {
  return std::ranges::equal(blocks_, other.blocks_, {}, &Block::bytes, &Block::bytes);
}
