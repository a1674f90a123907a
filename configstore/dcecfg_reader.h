// A cursor over the bytes of a configuration store.
#ifndef CONFIGSTORE_DCECFG_READER_H_
#define CONFIGSTORE_DCECFG_READER_H_

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "frame/text.h"
#include "platform/wince.h"

namespace pal {

// An advance that reaches the end of the data puts the cursor back to the start and sets the end
// flag. From then on there are no bytes: the start of the data is not read again.
class DcecfgReader {
 public:
  static constexpr DWORD kBufferSize = 1024;

  // False, and no data are loaded, where `data` would fill the buffer.
  [[nodiscard]] bool Load(std::span<const BYTE> data) {
    Clear();
    if (data.size() >= buffer_.size()) return false;
    std::copy(data.begin(), data.end(), buffer_.begin());
    length_ = static_cast<DWORD>(data.size());
    return true;
  }

  void Clear() {
    length_ = 0;
    Rewind();
  }

  void Rewind() {
    cursor_ = 0;
    item_ = 0;
    ended_ = false;
  }

  [[nodiscard]] bool ended() const { return ended_; }
  [[nodiscard]] bool HasByte() const { return !ended_ && cursor_ < length_; }
  [[nodiscard]] bool At(BYTE marker) const { return HasByte() && buffer_[cursor_] == marker; }
  [[nodiscard]] DWORD offset() const { return ended_ ? length_ : cursor_; }
  // Where the last byte, text or number that was read begins.
  [[nodiscard]] DWORD item_offset() const { return ended_ ? length_ : item_; }

  void Advance(DWORD bytes = 1) {
    cursor_ += bytes;
    if (ended_ || cursor_ >= length_) RunOff();
  }

  // 0 at the end.
  BYTE ReadByte() {
    item_ = cursor_;
    const BYTE byte = HasByte() ? buffer_[cursor_] : BYTE{0};
    Advance();
    return byte;
  }

  // The text up to its terminator, in the buffer. Nothing where the data ends first.
  std::optional<std::string_view> ReadString() {
    item_ = cursor_;
    std::string_view text;
    if (HasByte()) text = {reinterpret_cast<const char*>(&buffer_[cursor_]), length_ - cursor_};
    const size_t length = Find(text, '\0');
    if (length == text.size()) {
      RunOff();
      return std::nullopt;
    }
    Advance(static_cast<DWORD>(length) + 1);
    return text.substr(0, length);
  }

  // Low byte first, sign-extended. -1, and nothing read, where fewer than two bytes are left.
  LONG ReadNumber() {
    if (!HasByte() || length_ - cursor_ < 2) return -1;
    item_ = cursor_;
    const auto low = static_cast<unsigned>(buffer_[cursor_]);
    const auto high = static_cast<unsigned>(buffer_[cursor_ + 1]);
    Advance(2);
    return static_cast<int16_t>(low | (high << 8));
  }

 private:
  void RunOff() {
    cursor_ = 0;
    ended_ = true;
  }

  bool ended_ = false;
  std::array<BYTE, kBufferSize> buffer_;
  DWORD length_ = 0;
  DWORD cursor_ = 0;
  DWORD item_ = 0;
};

}  // namespace pal

#endif  // CONFIGSTORE_DCECFG_READER_H_
