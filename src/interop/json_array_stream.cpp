#include "interop/json_array_stream.hpp"

#include <simdjson.h>

#include <algorithm>

#include "cardiolith/interop/reader.hpp"

namespace cardiolith::interop::detail {
namespace {

constexpr int kEnd = -1;

bool isSpace(int c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::string describe(int c) {
  if (c == kEnd) return "the end of the file";
  if (c >= 0x20 && c < 0x7F) return std::string("'") + static_cast<char>(c) + "'";
  return "the byte " + std::to_string(static_cast<unsigned char>(c));
}

// Parses one root member's key or value on its own. The depth limit is one level below the parser's
// default, as the value sits one level down in the document.
class MemberParser {
 public:
  static constexpr std::size_t kInitialCapacity = 4096;  // grown for a larger member

  MemberParser() {
    if (parser_.allocate(kInitialCapacity, simdjson::DEFAULT_MAX_DEPTH - 1)) throw std::bad_alloc();
  }
  // The value, or the parser's reason for refusing it.
  simdjson::simdjson_result<simdjson::dom::element> parse(std::string_view text) {
    return parser_.parse(text.data(), text.size(), true);
  }

 private:
  simdjson::dom::parser parser_;
};

MemberParser& memberParser() {
  thread_local MemberParser parser;
  return parser;
}

}  // namespace

JsonArrayStream::JsonArrayStream(std::istream& in, std::string arrayKey, std::string alreadyRead,
                                 std::size_t blockSize, std::function<void(std::uint64_t)> progress)
    : in_(in),
      arrayKey_(std::move(arrayKey)),
      blockSize_(std::max<std::size_t>(1, blockSize)),
      progress_(std::move(progress)),
      buffer_(std::move(alreadyRead)),
      read_(buffer_.size()) {}

std::optional<std::string_view> JsonArrayStream::stringMember(const std::string& key) const {
  const auto found = strings_.find(key);
  if (found == strings_.end()) return std::nullopt;
  return found->second;
}

// Makes buffer_[position] readable; false when the input ends before it.
bool JsonArrayStream::fill(std::size_t position) {
  while (position >= buffer_.size() && !inputEnded_) {
    const std::size_t had = buffer_.size();
    buffer_.resize(had + blockSize_);
    in_.read(buffer_.data() + had, static_cast<std::streamsize>(blockSize_));
    const auto got = static_cast<std::size_t>(in_.gcount());
    buffer_.resize(had + got);
    read_ += got;
    inputEnded_ = !in_;
    if (progress_) progress_(read_);
  }
  return position < buffer_.size();
}

// The next byte that is not a space, as an unsigned char, or kEnd.
int JsonArrayStream::peekAfterSpaces() {
  while (fill(at_) && isSpace(buffer_[at_])) ++at_;
  return at_ < buffer_.size() ? static_cast<unsigned char>(buffer_[at_]) : kEnd;
}

void JsonArrayStream::fail(const std::string& reason) const {
  throw ImportError("invalid JSON at byte " + std::to_string(dropped_ + at_) + ": " + reason);
}

void JsonArrayStream::expect(char wanted, const char* what) {
  const int found = fill(at_) ? static_cast<unsigned char>(buffer_[at_]) : kEnd;
  if (found != static_cast<unsigned char>(wanted))
    fail(std::string("expected ") + what + ", found " + describe(found));
  ++at_;
}

// One past the closing quote of the string that opens at `from`.
std::size_t JsonArrayStream::endOfString(std::size_t from) {
  std::size_t position = from + 1;
  for (;;) {
    if (!fill(position)) {
      at_ = from;
      fail("the file ends inside this string");
    }
    // A plain loop: find_first_of calls memchr on its set for every byte.
    std::size_t special = position;
    while (special < buffer_.size() && buffer_[special] != '"' && buffer_[special] != '\\') ++special;
    if (special == buffer_.size()) {
      position = buffer_.size();
    } else if (buffer_[special] == '"') {
      return special + 1;
    } else {
      position = special + 2;  // an escape: the next byte cannot close the string
    }
  }
}

// One past the end of the value that starts at at_: a string, an object or array (brackets counted, strings
// stepped over), or a literal or number up to the next delimiter. Whether it is valid JSON is left to
// whoever parses it.
std::size_t JsonArrayStream::endOfValue() {
  const char first = buffer_[at_];
  if (first == '"') return endOfString(at_);
  std::size_t position = at_;
  if (first == '{' || first == '[') {
    std::size_t depth = 0;
    for (;;) {
      if (!fill(position)) fail("the file ends inside this value");
      const char c = buffer_[position];
      if (c == '"') {
        position = endOfString(position);
        continue;
      }
      if (c == '{' || c == '[') ++depth;
      if ((c == '}' || c == ']') && --depth == 0) return position + 1;
      ++position;
    }
  }
  while (fill(position) && !isSpace(buffer_[position]) && buffer_[position] != ',' &&
         buffer_[position] != ']' && buffer_[position] != '}') {
    ++position;
  }
  if (position == at_) fail("expected a value, found " + describe(static_cast<unsigned char>(first)));
  return position;
}

void JsonArrayStream::readMember() {
  if (state_ == State::firstMember && peekAfterSpaces() == '}') {  // the empty object
    ++at_;
    return closeRoot();
  }
  peekAfterSpaces();
  expect('"', "a member's name in quotes");
  --at_;
  const std::size_t keyEnd = endOfString(at_);
  std::string_view key;
  if (memberParser().parse(std::string_view(buffer_).substr(at_, keyEnd - at_)).get_string().get(key))
    fail("the member's name is not a valid JSON string");
  std::string name(key);
  at_ = keyEnd;
  peekAfterSpaces();
  expect(':', "':' after the member's name");
  const int first = peekAfterSpaces();
  if (name == arrayKey_) {
    if (sawArray_) fail("the member \"" + name + "\" appears twice");
    if (first != '[') fail("\"" + name + "\" is not an array");
    ++at_;
    sawArray_ = true;
    state_ = State::firstElement;
    return;
  }
  if (first == kEnd) fail("the file ends before the value of \"" + name + "\"");
  const std::size_t valueEnd = endOfValue();
  simdjson::dom::element value;
  if (const auto error =
          memberParser().parse(std::string_view(buffer_).substr(at_, valueEnd - at_)).get(value))
    fail("the value of \"" + name + "\" is not JSON: " + simdjson::error_message(error));
  if (std::string_view text; !value.get_string().get(text)) strings_[name] = text;
  at_ = valueEnd;
  afterMember();
}

void JsonArrayStream::afterMember() {
  if (peekAfterSpaces() == ',') {
    ++at_;
    state_ = State::nextMember;
    return;
  }
  expect('}', "',' or '}' after a member");
  closeRoot();
}

void JsonArrayStream::closeRoot() {
  if (const int c = peekAfterSpaces(); c != kEnd) fail("unexpected " + describe(c) + " after the document");
  state_ = State::ended;
}

std::optional<JsonArrayStream::Element> JsonArrayStream::readElement() {
  const int first = peekAfterSpaces();
  if (state_ == State::firstElement && first == ']') {
    ++at_;
    afterMember();
    return std::nullopt;
  }
  if (first == kEnd) fail("the file ends inside the array \"" + arrayKey_ + "\"");
  const std::size_t start = at_;
  at_ = endOfValue();
  const std::size_t end = at_;
  if (peekAfterSpaces() == ',') {
    ++at_;
    state_ = State::nextElement;
  } else {
    expect(']', "',' or ']' after an element");
    afterMember();
  }
  // Built last: reading on may have moved the buffer.
  return Element{index_++, dropped_ + start, std::string_view(buffer_).substr(start, end - start)};
}

std::optional<JsonArrayStream::Element> JsonArrayStream::next() {
  // The previous element's text is no longer needed: drop what has been read, once it is at least half the
  // buffer, so that each byte is moved a bounded number of times.
  if (at_ > 0 && at_ >= buffer_.size() / 2) {
    buffer_.erase(0, at_);
    dropped_ += at_;
    at_ = 0;
  }
  while (state_ != State::ended) {
    switch (state_) {
      case State::start:
        peekAfterSpaces();
        expect('{', "an object ({) at the top of the document");
        state_ = State::firstMember;
        break;
      case State::firstMember:
      case State::nextMember:
        readMember();
        break;
      case State::firstElement:
      case State::nextElement:
        if (auto element = readElement()) return element;
        break;
      case State::ended:
        break;
    }
  }
  return std::nullopt;
}

}  // namespace cardiolith::interop::detail
