#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace cardiolith::interop::detail {

// Streams the elements of one array member of a JSON document's root object (the "readings" of a readings
// document, the "entry" of a FHIR Bundle) from an input read a block at a time, so that only one element's
// text is held at once, however large the document. The scanner follows the document's structure (strings
// and their escapes, nesting) to find where each element ends, and leaves the parsing of the element to
// the caller; the root object's other members are parsed here, and those holding strings are kept.
//
// Faults in the structure (a missing comma, an unclosed string, anything after the root object) and
// members that are not JSON throw ImportError naming the byte offset. Not thread-safe.
class JsonArrayStream {
 public:
  struct Element {
    std::size_t index;      // its place in the array, from 0
    std::uint64_t offset;   // the byte of the input where it starts
    std::string_view text;  // valid until the next call of next()
  };

  // Reads `alreadyRead` (bytes taken from the input before) and then `in`, which must outlive the stream,
  // `blockSize` bytes at a time. `progress`, when set, is called with the count of bytes read after each
  // block.
  JsonArrayStream(std::istream& in, std::string arrayKey, std::string alreadyRead, std::size_t blockSize,
                  std::function<void(std::uint64_t)> progress);

  // The next element of the array, or nothing once the whole document has been read. A repeated array
  // member, or one that is not an array, is an ImportError.
  [[nodiscard]] std::optional<Element> next();

  // Whether the array member was found; final once next() has returned nothing.
  bool sawArray() const { return sawArray_; }
  // The unescaped value of a root member holding a string, if one has been read so far.
  std::optional<std::string_view> stringMember(const std::string& key) const;

 private:
  enum class State { start, firstMember, nextMember, firstElement, nextElement, ended };

  bool fill(std::size_t position);
  int peekAfterSpaces();
  void expect(char wanted, const char* what);
  [[noreturn]] void fail(const std::string& reason) const;
  std::size_t endOfValue();
  std::size_t endOfString(std::size_t from);
  void readMember();
  void afterMember();
  void closeRoot();
  std::optional<Element> readElement();

  std::istream& in_;
  std::string arrayKey_;
  std::size_t blockSize_;
  std::function<void(std::uint64_t)> progress_;
  std::string buffer_;
  std::size_t at_ = 0;         // the next unread byte of buffer_
  std::uint64_t dropped_ = 0;  // bytes of the input before buffer_[0]
  std::uint64_t read_ = 0;     // bytes of the input read so far
  bool inputEnded_ = false;
  State state_ = State::start;
  bool sawArray_ = false;
  std::size_t index_ = 0;
  std::map<std::string, std::string, std::less<>> strings_;
};

}  // namespace cardiolith::interop::detail
