#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "cardiolith/model/json.hpp"
#include "model/readings_array.hpp"
#include "model/readings_decoding.hpp"

namespace cardiolith::json_detail {
namespace {

constexpr bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// How many windows may fail to decode before the whole text is decoded instead. A window fails when its
// end was guessed inside a note that holds "},{" (the guess is then tried further back), or when a
// reading in it is broken (then the whole-text decoder names the fault).
constexpr int kMaxFailedWindows = 4;

// The document's text not yet decoded, [begin, end) of a buffer refilled from the source. Position 0 is
// kept free for the '[' that frames a window as a JSON array, and kReadPadding bytes after the buffer
// are readable.
class TextBuffer {
 public:
  TextBuffer(const ReadMore& readMore, std::size_t capacity) : readMore_(readMore) { reallocate(capacity); }

  char* data() { return bytes_.get(); }
  std::size_t begin() const { return begin_; }
  std::size_t end() const { return end_; }
  bool sourceEnded() const { return sourceEnded_; }
  // How many bytes of the document lie before the text not yet decoded.
  std::size_t consumed() const { return read_ - (end_ - begin_); }
  std::size_t paddingAfter(std::size_t position) const { return capacity_ + kReadPadding - position; }
  void consumeTo(std::size_t position) { begin_ = position; }

  // Moves the text not yet decoded to the front and reads until the buffer is full or the source ends.
  void refill() {
    if (begin_ > 1) {
      std::memmove(bytes_.get() + 1, bytes_.get() + begin_, end_ - begin_);
      end_ -= begin_ - 1;
      begin_ = 1;
    }
    while (!sourceEnded_ && end_ < capacity_) {
      const std::size_t got = readMore_(bytes_.get() + end_, capacity_ - end_);
      sourceEnded_ = got == 0;
      end_ += got;
      read_ += got;
    }
    std::memset(bytes_.get() + end_, ' ', kReadPadding);  // the parser may look past the text
  }

  // Twice the room, for a reading larger than the buffer.
  void grow() { reallocate(capacity_ * 2); }

 private:
  void reallocate(std::size_t capacity) {
    auto bytes = std::make_unique_for_overwrite<char[]>(capacity + kReadPadding);
    if (bytes_) std::memcpy(bytes.get(), bytes_.get(), end_);
    bytes_ = std::move(bytes);
    capacity_ = capacity;
  }

  const ReadMore& readMore_;
  std::unique_ptr<char[]> bytes_;
  std::size_t capacity_ = 0;
  std::size_t begin_ = 1;
  std::size_t end_ = 1;
  std::size_t read_ = 0;
  bool sourceEnded_ = false;
};

class WindowedDecoder {
 public:
  WindowedDecoder(const ReadMore& readMore, std::size_t expectedSize, std::size_t bufferSize)
      : text_(readMore, bufferSize), expectedSize_(expectedSize) {
    // A window's array sits one level higher than the document's, so its parser allows one level less.
    if (parser_.allocate(bufferSize, simdjson::DEFAULT_MAX_DEPTH - 1)) throw std::bad_alloc();
  }

  std::optional<Readings> decode() {
    text_.refill();
    if (!skipOpening()) return std::nullopt;
    while (!text_.sourceEnded()) {
      if (!decodeNextWindow()) return std::nullopt;
      if (!reserved_) reserveForTheWholeDocument();
      text_.refill();
    }
    if (!decodeLastWindow()) return std::nullopt;
    return Readings{std::move(list_)};
  }

 private:
  // Where a window of complete readings may end: after `end` (the '}' of a reading) come a comma and
  // the '{' of the next reading at `next`.
  struct Cut {
    std::size_t end;
    std::size_t comma;
    std::size_t next;
  };

  // Makes room for as many readings as the first window's share of the document suggests, so that the
  // list of a large log is neither copied as it grows nor left with twice the room it needs.
  void reserveForTheWholeDocument() {
    const std::size_t consumed = text_.consumed();
    if (list_.empty() || expectedSize_ <= consumed) return;
    reserved_ = true;
    const double share = static_cast<double>(expectedSize_) / static_cast<double>(consumed);
    list_.reserve(static_cast<std::size_t>(static_cast<double>(list_.size()) * share * 1.05) + 1);
  }

  // Consumes the opening {"readings":[ and the spaces after it; false when the text starts otherwise.
  bool skipOpening() {
    const char* const text = text_.data();
    std::size_t at = text_.begin();
    const auto skipSpaces = [&] {
      while (at < text_.end() && isSpace(text[at])) ++at;
    };
    const auto expect = [&](std::string_view token) {
      skipSpaces();
      if (text_.end() - at < token.size() || std::string_view(text + at, token.size()) != token) return false;
      at += token.size();
      return true;
    };
    const std::string quotedKey = '"' + std::string(kReadingsKey) + '"';
    if (!expect("{") || !expect(quotedKey) || !expect(":") || !expect("[")) return false;
    skipSpaces();
    text_.consumeTo(at);
    return true;
  }

  // The last comma before `before` that separates two readings, or nothing.
  std::optional<Cut> findCut(std::size_t before) {
    const char* const text = text_.data();
    for (std::size_t comma = before; comma-- > text_.begin();) {
      if (text[comma] != ',') continue;
      std::size_t end = comma;
      while (end > text_.begin() && isSpace(text[end - 1])) --end;
      std::size_t next = comma + 1;
      while (next < text_.end() && isSpace(text[next])) ++next;
      if (end > text_.begin() && text[end - 1] == '}' && next < text_.end() && text[next] == '{')
        return Cut{end, comma, next};
    }
    return std::nullopt;
  }

  // Decodes the readings up to the last cut in the buffer; with no cut there, makes room for a larger
  // window. False when windows keep failing.
  bool decodeNextWindow() {
    std::size_t searchBefore = text_.end();
    for (int failures = 0; failures < kMaxFailedWindows; ++failures) {
      const auto cut = findCut(searchBefore);
      if (!cut) {
        if (failures > 0) return false;
        text_.grow();
        return true;
      }
      if (decodeWindow(text_.begin(), cut->end)) {
        text_.consumeTo(cut->next);
        return true;
      }
      searchBefore = cut->comma;
    }
    return false;
  }

  // Decodes the rest of the text, which ends the array and the document: ...] } and spaces.
  bool decodeLastWindow() {
    const char* const text = text_.data();
    const std::size_t begin = text_.begin();
    std::size_t end = text_.end();
    const auto skipSpacesBack = [&] {
      while (end > begin && isSpace(text[end - 1])) --end;
    };
    skipSpacesBack();
    if (end == begin || text[--end] != '}') return false;
    skipSpacesBack();
    if (end == begin || text[--end] != ']') return false;
    skipSpacesBack();
    return end == begin || decodeWindow(begin, end);
  }

  // Decodes the readings in [begin, end), framed as a JSON array by the bytes on either side, which are
  // put back afterwards. On failure, the window's readings are dropped.
  bool decodeWindow(std::size_t begin, std::size_t end) {
    char* const text = text_.data();
    const char before = text[begin - 1];
    const char after = text[end];
    text[begin - 1] = '[';
    text[end] = ']';
    const std::size_t count = list_.size();
    bool decoded = true;
    try {
      JsonReader reader(parser_, std::string_view(text + begin - 1, end - begin + 2),
                        text_.paddingAfter(end + 1));
      auto array = reader.rootArray();
      appendReadings(reader, arena_, array, readingsPath_, list_);
      reader.finish();
    } catch (const DecodingError&) {
      list_.erase(list_.begin() + static_cast<std::ptrdiff_t>(count), list_.end());
      decoded = false;
    }
    text[begin - 1] = before;
    text[end] = after;
    return decoded;
  }

  TextBuffer text_;
  const std::size_t expectedSize_;
  ondemand::parser parser_;
  ReadingArena arena_;
  ReadingList list_;
  bool reserved_ = false;
  const JsonPath rootPath_;
  const JsonPath readingsPath_ = rootPath_.member(kReadingsKey);
};

}  // namespace

ReadMore readMoreFrom(std::string_view text) {
  return [text, copied = std::size_t{0}](char* into, std::size_t capacity) mutable {
    const std::size_t count = std::min(capacity, text.size() - copied);
    std::memcpy(into, text.data() + copied, count);
    copied += count;
    return count;
  };
}

std::optional<Readings> decodeReadingsInWindows(const ReadMore& readMore, std::size_t expectedSize,
                                                std::size_t windowSize) {
  // Room for the framing '[' and for the read that finds the end, so that a document no larger than
  // expected is read in one window.
  const std::size_t bufferSize = std::max<std::size_t>(2, std::min(windowSize, expectedSize + 2));
  return WindowedDecoder(readMore, expectedSize, bufferSize).decode();
}

}  // namespace cardiolith::json_detail
