#include "cardiolith/sample/lorem.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/memory.hpp"
#include "platform/random.hpp"
#include "sample/lorem_words.hpp"

namespace cardiolith {
namespace {

using detail::random::uniformBelow;

void appendWord(std::string& text) {
  const auto& words = detail::loremWords();
  text.append(words[uniformBelow(words.size())]);
}

// `count` pieces with `separator` between neighbours, none before the first or after the last.
template <class AppendPiece>
void appendJoined(std::string& text, std::uint64_t count, std::string_view separator,
                  AppendPiece appendPiece) {
  for (std::uint64_t i = 0; i < count; ++i) {
    if (i > 0) text.append(separator);
    appendPiece(text);
  }
}

// 4 to 16 words, the first capitalised, and a full stop.
void appendSentence(std::string& text) {
  const std::size_t start = text.size();
  appendJoined(text, 4 + uniformBelow(13), " ", appendWord);
  // Every word is lower-case ASCII, so capitalising is a shift into the upper-case letters.
  if (text[start] >= 'a' && text[start] <= 'z') text[start] = static_cast<char>(text[start] - 'a' + 'A');
  text.push_back('.');
}

// 3 to 9 sentences joined by single spaces.
void appendParagraph(std::string& text) { appendJoined(text, 3 + uniformBelow(7), " ", appendSentence); }

// One kind of filler piece and how its runs are joined.
struct PieceKind {
  std::string_view operation;  // for error messages
  std::string_view plural;
  std::size_t shortestLength;  // a lower bound on the length of one piece
  std::string_view separator;
  void (*append)(std::string&);
};

// The shortest word has one letter; a sentence has at least four words, three spaces and a full stop; a
// paragraph at least three sentences and two spaces.
constexpr PieceKind kWords{"Lorem::words", "words", 1, " ", appendWord};
constexpr PieceKind kSentences{"Lorem::sentences", "sentences", 8, " ", appendSentence};
constexpr PieceKind kParagraphs{"Lorem::paragraphs", "paragraphs", 26, "\n\n", appendParagraph};

[[noreturn]] void reject(const PieceKind& kind, const std::string& why) {
  throw std::invalid_argument(std::string(kind.operation) + ": " + why);
}

std::string describe(HalfOpenRange range) {
  return "[" + std::to_string(range.lower) + ", " + std::to_string(range.upper) + ")";
}
std::string describe(ClosedRange range) {
  return "[" + std::to_string(range.lower) + ", " + std::to_string(range.upper) + "]";
}

// A negative lower bound is refused outright, rather than only when a draw happens to give a negative
// count.
template <class Range>
void requireNonNegativeLowerBound(const PieceKind& kind, Range range) {
  if (range.lower < 0) {
    reject(kind,
           "the range " + describe(range) + " has a negative lower bound, so it could give a negative count");
  }
}

std::string make(const PieceKind& kind, std::int64_t count) {
  if (count < 0) reject(kind, "the count must be 0 or more, got " + std::to_string(count));
  // Refuse before building anything a run that could not fit in one string even with the shortest pieces:
  // not within the string's largest size, nor within the machine's memory, which is far smaller.
  const std::uint64_t longestText =
      std::min<std::uint64_t>(std::string().max_size(), detail::memory::capacityBytes());
  const std::uint64_t fitting =
      (longestText + kind.separator.size()) / (kind.shortestLength + kind.separator.size());
  if (static_cast<std::uint64_t>(count) > fitting) {
    throw std::length_error(std::string(kind.operation) + ": " + std::to_string(count) + " " +
                            std::string(kind.plural) + " cannot fit in one string (" +
                            std::to_string(fitting) + " at most)");
  }
  std::string text;
  appendJoined(text, static_cast<std::uint64_t>(count), kind.separator, kind.append);
  return text;
}

// The count is the lower bound plus a uniform draw below the range's size.
std::string make(const PieceKind& kind, HalfOpenRange range) {
  if (range.upper <= range.lower) reject(kind, "the half-open range " + describe(range) + " is empty");
  requireNonNegativeLowerBound(kind, range);
  const std::uint64_t size =
      static_cast<std::uint64_t>(range.upper) - static_cast<std::uint64_t>(range.lower);
  return make(kind, range.lower + static_cast<std::int64_t>(uniformBelow(size)));
}

// With a lower bound of 0 or more the size is at most 2^63, so it can always be formed; the closed range
// of every integer has a negative lower bound and is refused like any other.
std::string make(const PieceKind& kind, ClosedRange range) {
  if (range.upper < range.lower) {
    reject(kind, "the closed range " + describe(range) + " has its upper bound below its lower bound");
  }
  requireNonNegativeLowerBound(kind, range);
  const std::uint64_t size =
      static_cast<std::uint64_t>(range.upper) - static_cast<std::uint64_t>(range.lower) + 1;
  return make(kind, range.lower + static_cast<std::int64_t>(uniformBelow(size)));
}

}  // namespace

std::string Lorem::word() {
  std::string text;
  appendWord(text);
  return text;
}
std::string Lorem::words(std::int64_t count) { return make(kWords, count); }
std::string Lorem::words(HalfOpenRange range) { return make(kWords, range); }
std::string Lorem::words(ClosedRange range) { return make(kWords, range); }

std::string Lorem::sentence() {
  std::string text;
  appendSentence(text);
  return text;
}
std::string Lorem::sentences(std::int64_t count) { return make(kSentences, count); }
std::string Lorem::sentences(HalfOpenRange range) { return make(kSentences, range); }
std::string Lorem::sentences(ClosedRange range) { return make(kSentences, range); }

std::string Lorem::paragraph() {
  std::string text;
  appendParagraph(text);
  return text;
}
std::string Lorem::paragraphs(std::int64_t count) { return make(kParagraphs, count); }
std::string Lorem::paragraphs(HalfOpenRange range) { return make(kParagraphs, range); }
std::string Lorem::paragraphs(ClosedRange range) { return make(kParagraphs, range); }

}  // namespace cardiolith
