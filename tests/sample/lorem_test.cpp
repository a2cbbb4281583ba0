#include "cardiolith/sample/lorem.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "sample/lorem_words.hpp"

namespace cardiolith {
namespace {

constexpr std::int64_t kInt64Max = std::numeric_limits<std::int64_t>::max();

// The pieces of `text` between the separators; none for the empty text.
std::vector<std::string> split(const std::string& text, std::string_view separator) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; !text.empty();) {
    const std::size_t end = text.find(separator, start);
    parts.push_back(text.substr(start, end - start));
    if (end == std::string::npos) break;
    start = end + separator.size();
  }
  return parts;
}

// The number of words in `text`, each a listed word after a single space.
std::size_t listedWords(const std::string& text) {
  const auto words = split(text, " ");
  for (const auto& word : words) {
    EXPECT_NE(std::ranges::find(detail::loremWords(), word), detail::loremWords().end())
        << word << " in " << text;
  }
  return words.size();
}

// The number of words of a well-formed sentence: capitalised listed words and a final full stop.
std::size_t sentenceWords(std::string sentence) {
  EXPECT_TRUE(sentence.size() >= 2 && sentence.back() == '.' && sentence[0] >= 'A' && sentence[0] <= 'Z')
      << sentence;
  if (sentence.size() < 2) return 0;
  sentence.pop_back();
  sentence[0] = static_cast<char>(sentence[0] - 'A' + 'a');
  return listedWords(sentence);
}

// The sentences of a paragraph, each checked.
std::size_t paragraphSentences(const std::string& paragraph) {
  const auto sentences = split(paragraph, ". ");
  for (std::size_t i = 0; i < sentences.size(); ++i)
    sentenceWords(sentences[i] + (i + 1 < sentences.size() ? "." : ""));
  return sentences.size();
}

// Sentences hold 4 to 16 words and paragraphs 3 to 9 sentences: each of the 13 sentence lengths has a chance
// of 1/13, each of the 7 paragraph lengths 1/7, so missing one in 2000 sentences or 1000 paragraphs has odds
// below 1e-60.
TEST(LoremTest, SentencesAndParagraphsHaveEveryLengthTheyMayHaveAndNoOther) {
  std::set<std::size_t> sentenceLengths, paragraphLengths;
  for (int i = 0; i < 2000; ++i) sentenceLengths.insert(sentenceWords(Lorem::sentence()));
  for (int i = 0; i < 1000; ++i) paragraphLengths.insert(paragraphSentences(Lorem::paragraph()));
  EXPECT_EQ(sentenceLengths, (std::set<std::size_t>{4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
  EXPECT_EQ(paragraphLengths, (std::set<std::size_t>{3, 4, 5, 6, 7, 8, 9}));
}

TEST(LoremTest, CountsGiveThatManyPiecesJoinedBySeparators) {
  EXPECT_EQ(Lorem::words(0) + Lorem::sentences(0) + Lorem::paragraphs(0), "");
  EXPECT_EQ(listedWords(Lorem::word()), 1u);
  EXPECT_EQ(listedWords(Lorem::words(7)), 7u);
  EXPECT_EQ(paragraphSentences(Lorem::sentences(5)), 5u);
  const auto paragraphs = split(Lorem::paragraphs(3), "\n\n");
  ASSERT_EQ(paragraphs.size(), 3u);
  for (const auto& paragraph : paragraphs) {
    EXPECT_EQ(paragraph.find('\n'), std::string::npos);
    paragraphSentences(paragraph);
  }
}

// Every count a range allows comes up, the upper bound of a half-open range never. With at most 3 counts
// and 300 draws, missing one has odds below 1e-50.
TEST(LoremTest, RangeFormsDrawTheCountFromTheRange) {
  const auto counts = [](const std::function<std::string()>& make, std::string_view separator) {
    std::set<std::size_t> seen;
    for (int i = 0; i < 300; ++i) seen.insert(split(make(), separator).size());
    return seen;
  };
  using Counts = std::set<std::size_t>;
  EXPECT_EQ(counts([] { return Lorem::words(HalfOpenRange{2, 3}); }, " "), Counts{2});
  EXPECT_EQ(counts([] { return Lorem::words(ClosedRange{2, 2}); }, " "), Counts{2});
  EXPECT_EQ(counts([] { return Lorem::words(HalfOpenRange{2, 5}); }, " "), (Counts{2, 3, 4}));
  EXPECT_EQ(counts([] { return Lorem::words(ClosedRange{0, 2}); }, " "), (Counts{0, 1, 2}));
  EXPECT_EQ(counts([] { return Lorem::sentences(HalfOpenRange{1, 3}); }, ". "), (Counts{1, 2}));
  EXPECT_EQ(counts([] { return Lorem::sentences(ClosedRange{1, 3}); }, ". "), (Counts{1, 2, 3}));
  EXPECT_EQ(counts([] { return Lorem::paragraphs(HalfOpenRange{1, 4}); }, "\n\n"), (Counts{1, 2, 3}));
  EXPECT_EQ(counts([] { return Lorem::paragraphs(ClosedRange{2, 3}); }, "\n\n"), (Counts{2, 3}));
}

// The message of the std::invalid_argument that make(argument) throws.
template <class Argument>
std::string errorOf(std::string (*make)(Argument), Argument argument) {
  try {
    make(argument);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "no exception";
}

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
  // Counts too large for a string are refused before anything is built.
  EXPECT_THROW(Lorem::paragraphs(kInt64Max), std::length_error);
  EXPECT_THROW(Lorem::words(static_cast<std::int64_t>(std::string().max_size() / 2 + 2)), std::length_error);
}

// Words come up in proportion to their entries in the list. Over 200,000 draws, "et" (11 of 249 entries)
// is expected 8835.3 times with a standard deviation of 91.9; the bound of 700 is 7.6 deviations, so a
// false failure has odds below 1e-13. The chi-square statistic over the 182 distinct words (181 degrees
// of freedom, mean 181, standard deviation 19) exceeds 360 with odds below 1e-13; a list without its
// repeats, a draw that misses an end of the list or a noticeably biased draw lands far above it.
TEST(LoremTest, WordsAreDrawnInProportionToTheirEntries) {
  constexpr int kDraws = 200'000;
  const auto& list = detail::loremWords();
  std::map<std::string, int> entries, drawn;
  for (const auto word : list) ++entries[std::string(word)];
  for (int i = 0; i < kDraws; ++i) ++drawn[Lorem::word()];

  EXPECT_NEAR(drawn["et"], kDraws * 11.0 / 249.0, 700.0);
  double chiSquare = 0;
  for (const auto& [word, count] : entries) {
    const double expected = kDraws * static_cast<double>(count) / static_cast<double>(list.size());
    chiSquare += (drawn[word] - expected) * (drawn[word] - expected) / expected;
  }
  EXPECT_EQ(drawn.size(), entries.size());
  EXPECT_LT(chiSquare, 360.0);
}

}  // namespace
}  // namespace cardiolith
