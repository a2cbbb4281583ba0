#include "cardiolith/sample/lorem.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "model/error_message.hpp"
#include "platform/memory.hpp"
#include "sample/lorem_words.hpp"

namespace cardiolith {
namespace {

// The form of a run of pieces: a pattern for its text and the separator between its pieces. Words are
// lower-case, after single spaces; sentences of them are capitalised and end in a full stop, after single
// spaces; paragraphs of those come after blank lines. A run may be empty.
struct Form {
  std::regex pattern;
  std::string_view separator;
};
const std::string kSentence = "[A-Z][a-z]*( [a-z]+)*\\.", kParagraph = kSentence + "( " + kSentence + ")*";
const Form kWords{std::regex("([a-z]+( [a-z]+)*)?"), " "},
    kSentences{std::regex("(" + kParagraph + ")?"), ". "},
    kParagraphs{std::regex("(" + kParagraph + "(\n\n" + kParagraph + ")*)?"), "\n\n"},
    kWordsOfASentence{std::regex(kSentence), " "};

// The number of pieces in `text`, which must have the given form.
std::size_t pieces(const std::string& text, const Form& form) {
  EXPECT_TRUE(std::regex_match(text, form.pattern)) << text;
  std::size_t count = !text.empty();
  for (auto at = text.find(form.separator); at != std::string::npos; at = text.find(form.separator, at + 1))
    ++count;
  return count;
}

// The numbers of pieces seen in `draws` texts from `make`.
std::set<std::size_t> counts(std::string (*make)(), const Form& form, int draws = 300) {
  std::set<std::size_t> seen;
  for (int i = 0; i < draws; ++i) seen.insert(pieces(make(), form));
  return seen;
}

// Every count a range allows comes up, the upper bound of a half-open range never: with at most 3 counts
// and 300 draws, missing one has odds below 1e-50. Sentences hold 4 to 16 words and paragraphs 3 to 9
// sentences, each length with a chance of 1/13 or 1/7, so missing one in 2000 sentences or 1000 paragraphs
// has odds below 1e-60.
TEST(LoremTest, RunsHaveEveryCountTheirLengthOrRangeAllowsAndNoOther) {
  using Counts = std::set<std::size_t>;
  EXPECT_EQ(counts(Lorem::sentence, kWordsOfASentence, 2000),
            (Counts{4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
  EXPECT_EQ(counts(Lorem::paragraph, kSentences, 1000), (Counts{3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(counts(Lorem::word, kWords), Counts{1});
  EXPECT_EQ(counts([] { return Lorem::words(7); }, kWords), Counts{7});
  EXPECT_EQ(counts([] { return Lorem::words(HalfOpenRange{2, 5}); }, kWords), (Counts{2, 3, 4}));
  EXPECT_EQ(counts([] { return Lorem::words(ClosedRange{0, 2}); }, kWords), (Counts{0, 1, 2}));
  EXPECT_EQ(counts([] { return Lorem::sentences(5); }, kSentences), Counts{5});
  EXPECT_EQ(counts([] { return Lorem::sentences(HalfOpenRange{1, 3}); }, kSentences), (Counts{1, 2}));
  EXPECT_EQ(counts([] { return Lorem::sentences(ClosedRange{1, 3}); }, kSentences), (Counts{1, 2, 3}));
  EXPECT_EQ(counts([] { return Lorem::paragraphs(3); }, kParagraphs), Counts{3});
  EXPECT_EQ(counts([] { return Lorem::paragraphs(HalfOpenRange{1, 4}); }, kParagraphs), (Counts{1, 2, 3}));
  EXPECT_EQ(counts([] { return Lorem::paragraphs(ClosedRange{2, 2}); }, kParagraphs), Counts{2});
}

// The message of the std::invalid_argument that make(argument) throws.
template <class Argument>
std::string errorOf(std::string (*make)(Argument), Argument argument) {
  return testing::messageOf<std::invalid_argument>([&] { make(argument); });
}

constexpr std::int64_t kInt64Max = std::numeric_limits<std::int64_t>::max();

TEST(LoremTest, BrokenPreconditionsThrowSayingWhatWasWrong) {
  EXPECT_EQ(errorOf<std::int64_t>(Lorem::words, -1), "Lorem::words: the count must be 0 or more, got -1");
  EXPECT_EQ(errorOf<HalfOpenRange>(Lorem::paragraphs, {4, 3}),
            "Lorem::paragraphs: the half-open range [4, 3) is empty");
  EXPECT_EQ(errorOf<HalfOpenRange>(Lorem::words, {-1, 3}),
            "Lorem::words: the range [-1, 3) has a negative lower bound, so it could give a negative count");
  EXPECT_EQ(errorOf<ClosedRange>(Lorem::sentences, {3, 2}),
            "Lorem::sentences: the closed range [3, 2] has its upper bound below its lower bound");
  EXPECT_EQ(errorOf<ClosedRange>(Lorem::paragraphs, {std::numeric_limits<std::int64_t>::min(), kInt64Max}),
            "Lorem::paragraphs: the range [-9223372036854775808, 9223372036854775807] has a negative lower "
            "bound, so it could give a negative count");
}

// Counts, given or drawn, whose text could not be held are refused before anything is built: beyond a
// string's maximum size, or beyond the machine's memory. A drawn count below the machine's memory (a
// chance of 1 in 2^28 or less per draw here) would be built instead.
TEST(LoremTest, CountsTooLargeToHoldThrowLengthErrorBeforeBuilding) {
  const auto wordsInMemory = static_cast<std::int64_t>(detail::memory::capacityBytes() / 2);
  const std::pair<std::function<std::string()>, std::string> cases[] = {
      {[] {
         return Lorem::words(ClosedRange{0, kInt64Max});
       },
       "Lorem::words: "},
      {[] {
         return Lorem::sentences(HalfOpenRange{kInt64Max / 2, kInt64Max});
       },
       "Lorem::sentences: "},
      {[] { return Lorem::paragraphs(kInt64Max); }, "Lorem::paragraphs: 9223372036854775807 paragraphs"},
      {[] { return Lorem::words(static_cast<std::int64_t>(std::string().max_size() / 2 + 2)); },
       "Lorem::words: "},
      {[&] { return Lorem::words(wordsInMemory + 1); },
       "Lorem::words: " + std::to_string(wordsInMemory + 1) + " words cannot fit in one string"},
  };
  for (const auto& [make, messageStart] : cases) {
    for (int draw = 0; draw < 20; ++draw) {
      const std::string message = testing::messageOf<std::length_error>(make);
      EXPECT_EQ(message.substr(0, messageStart.size()), messageStart);
    }
  }
}

// Words come up in proportion to their entries in the list. Over 200,000 draws the chi-square statistic
// over the 182 distinct words (181 degrees of freedom, mean 181, standard deviation 19) exceeds 360 with
// odds below 1e-13; a list without its repeats ("et" has 11 of 249 entries), a draw that misses an end of
// the list or a noticeably biased draw lands far above it.
TEST(LoremTest, WordsAreDrawnInProportionToTheirEntries) {
  constexpr int kDraws = 200'000;
  const auto& list = detail::loremWords();
  std::map<std::string, int> entries, drawn;
  for (const auto word : list) ++entries[std::string(word)];
  for (int i = 0; i < kDraws; ++i) ++drawn[Lorem::word()];
  double chiSquare = 0;
  for (const auto& [word, count] : entries) {
    const double expected = kDraws * static_cast<double>(count) / static_cast<double>(list.size());
    chiSquare += (drawn[word] - expected) * (drawn[word] - expected) / expected;
  }
  EXPECT_EQ(drawn.size(), entries.size());  // no word from outside the list
  EXPECT_LT(chiSquare, 360.0);
}

}  // namespace
}  // namespace cardiolith
