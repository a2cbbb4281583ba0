#include "cardiolith/sample/lorem.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

constexpr std::int64_t kInt64Min = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kInt64Max = std::numeric_limits<std::int64_t>::max();

std::vector<std::string> split(const std::string& text, std::string_view separator) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find(separator, start)) != std::string::npos;
       start = end + separator.size()) {
    parts.push_back(text.substr(start, end - start));
  }
  parts.push_back(text.substr(start));
  return parts;
}

bool isListedWord(const std::string& word) {
  for (const auto listed : detail::loremWords()) {
    if (listed == word) return true;
  }
  return false;
}

// The number of words of a well-formed sentence: a capitalised listed word, further listed words after
// single spaces, and a final full stop. Fails the test and gives 0 for anything else.
std::size_t sentenceWords(const std::string& sentence) {
  EXPECT_GE(sentence.size(), 2u);
  if (sentence.size() < 2) return 0;
  EXPECT_EQ(sentence.back(), '.') << sentence;
  EXPECT_TRUE(sentence.front() >= 'A' && sentence.front() <= 'Z') << sentence;
  std::string body = sentence.substr(0, sentence.size() - 1);
  body.front() = static_cast<char>(body.front() - 'A' + 'a');
  const auto words = split(body, " ");
  for (const auto& word : words) EXPECT_TRUE(isListedWord(word)) << "'" << word << "' in " << sentence;
  return words.size();
}

TEST(LoremWordListTest, HoldsTheEntriesInStoredOrder) {
  const auto& words = detail::loremWords();
  ASSERT_EQ(words.size(), 249u);
  EXPECT_EQ(words.front(), "alias");
  EXPECT_EQ(words[1], "consequatur");
  EXPECT_EQ(words[125], "quas");
  EXPECT_EQ(words.back(), "repellat");
  // The positions of the eleven "et" entries pin the order down across the whole list.
  std::vector<std::size_t> et;
  std::set<std::string_view> distinct;
  std::size_t letters = 0;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "et") et.push_back(i);
    distinct.insert(words[i]);
    letters += words[i].size();
    EXPECT_TRUE(!words[i].empty() && words[i].size() <= 14) << words[i];
    EXPECT_EQ(words[i].find_first_not_of("abcdefghijklmnopqrstuvwxyz"), std::string_view::npos) << words[i];
  }
  EXPECT_THAT(et, ::testing::ElementsAre(16, 60, 107, 124, 153, 156, 162, 199, 215, 225, 229));
  EXPECT_EQ(distinct.size(), 182u);
  EXPECT_EQ(letters, 1436u);
}

TEST(LoremTest, CountsOfZeroAndOne) {
  EXPECT_EQ(Lorem::words(0), "");
  EXPECT_EQ(Lorem::sentences(0), "");
  EXPECT_EQ(Lorem::paragraphs(0), "");
  const std::string one = Lorem::words(1);
  EXPECT_TRUE(isListedWord(one)) << one;
  EXPECT_TRUE(isListedWord(Lorem::word()));
}

TEST(LoremTest, SentencesHoldFourToSixteenWords) {
  std::map<std::size_t, int> lengths;
  for (int i = 0; i < 2000; ++i) ++lengths[sentenceWords(Lorem::sentence())];
  // Each of the 13 lengths has a chance of 1/13; missing one in 2000 sentences has odds below 1e-60.
  ASSERT_EQ(lengths.size(), 13u);
  EXPECT_EQ(lengths.begin()->first, 4u);
  EXPECT_EQ(lengths.rbegin()->first, 16u);
}

TEST(LoremTest, SentencesAreJoinedBySingleSpaces) {
  const std::string text = Lorem::sentences(5);
  const auto sentences = split(text, ". ");
  ASSERT_EQ(sentences.size(), 5u) << text;
  for (std::size_t i = 0; i + 1 < sentences.size(); ++i) sentenceWords(sentences[i] + ".");
  sentenceWords(sentences.back());
}

TEST(LoremTest, ParagraphsHoldThreeToNineSentences) {
  std::map<std::size_t, int> lengths;
  for (int i = 0; i < 1000; ++i) {
    const std::string paragraph = Lorem::paragraph();
    EXPECT_EQ(paragraph.find('\n'), std::string::npos);
    const auto sentences = split(paragraph, ". ");
    for (std::size_t j = 0; j + 1 < sentences.size(); ++j) sentenceWords(sentences[j] + ".");
    sentenceWords(sentences.back());
    ++lengths[sentences.size()];
  }
  ASSERT_EQ(lengths.size(), 7u);
  EXPECT_EQ(lengths.begin()->first, 3u);
  EXPECT_EQ(lengths.rbegin()->first, 9u);
}

TEST(LoremTest, ParagraphsAreSeparatedByABlankLine) {
  const std::string text = Lorem::paragraphs(3);
  const auto paragraphs = split(text, "\n\n");
  ASSERT_EQ(paragraphs.size(), 3u);
  for (const auto& paragraph : paragraphs) {
    EXPECT_FALSE(paragraph.empty());
    EXPECT_EQ(paragraph.find('\n'), std::string::npos);
  }
  EXPECT_NE(text.back(), '\n');
}

// Every count a range allows comes up, and none outside it. With at most 3 counts and 300 draws, missing
// one has odds below 1e-50.
TEST(LoremTest, RangeFormsDrawTheCountFromTheRange) {
  struct Case {
    const char* name;
    std::function<std::string()> make;
    std::string_view separator;
    std::set<std::size_t> counts;
  };
  const Case cases[] = {
      {"words [2, 3)",
       [] {
         return Lorem::words(HalfOpenRange{2, 3});
       },
       " ",
       {2}},
      {"words [2, 2]",
       [] {
         return Lorem::words(ClosedRange{2, 2});
       },
       " ",
       {2}},
      {"words [2, 5)",
       [] {
         return Lorem::words(HalfOpenRange{2, 5});
       },
       " ",
       {2, 3, 4}},
      {"words [2, 4]",
       [] {
         return Lorem::words(ClosedRange{2, 4});
       },
       " ",
       {2, 3, 4}},
      {"sentences [1, 3)",
       [] {
         return Lorem::sentences(HalfOpenRange{1, 3});
       },
       ". ",
       {1, 2}},
      {"sentences [1, 3]",
       [] {
         return Lorem::sentences(ClosedRange{1, 3});
       },
       ". ",
       {1, 2, 3}},
      {"paragraphs [1, 4)",
       [] {
         return Lorem::paragraphs(HalfOpenRange{1, 4});
       },
       "\n\n",
       {1, 2, 3}},
      {"paragraphs [2, 3]",
       [] {
         return Lorem::paragraphs(ClosedRange{2, 3});
       },
       "\n\n",
       {2, 3}},
  };
  for (const auto& c : cases) {
    std::set<std::size_t> seen;
    for (int i = 0; i < 300; ++i) seen.insert(split(c.make(), c.separator).size());
    EXPECT_EQ(seen, c.counts) << c.name;
  }
}

TEST(LoremTest, RangesStartingAtZeroCanGiveTheEmptyText) {
  std::set<std::string> seen;
  for (int i = 0; i < 200 && seen.count("") == 0; ++i) seen.insert(Lorem::words(ClosedRange{0, 1}));
  EXPECT_EQ(seen.count(""), 1u);
}

TEST(LoremTest, BrokenPreconditionsThrowSayingWhatWasWrong) {
  struct Case {
    std::function<std::string()> call;
    std::string message;
  };
  const Case cases[] = {
      {[] { return Lorem::words(-1); }, "Lorem::words: the count must be 0 or more, got -1"},
      {[] { return Lorem::sentences(kInt64Min); },
       "Lorem::sentences: the count must be 0 or more, got -9223372036854775808"},
      {[] {
         return Lorem::words(HalfOpenRange{3, 3});
       },
       "Lorem::words: the half-open range [3, 3) is empty"},
      {[] {
         return Lorem::paragraphs(HalfOpenRange{4, 3});
       },
       "Lorem::paragraphs: the half-open range [4, 3) is empty"},
      {[] {
         return Lorem::words(HalfOpenRange{-1, 3});
       },
       "Lorem::words: the range [-1, 3) has a negative lower bound, so it could give a negative count"},
      {[] {
         return Lorem::sentences(ClosedRange{3, 2});
       },
       "Lorem::sentences: the closed range [3, 2] has its upper bound below its lower bound"},
      {[] {
         return Lorem::words(ClosedRange{-1, 3});
       },
       "Lorem::words: the range [-1, 3] has a negative lower bound, so it could give a negative count"},
      {[] {
         return Lorem::paragraphs(ClosedRange{kInt64Min, kInt64Max});
       },
       "Lorem::paragraphs: the range [-9223372036854775808, 9223372036854775807] has a negative lower bound, "
       "so it could give a negative count"},
  };
  for (const auto& c : cases) {
    try {
      c.call();
      ADD_FAILURE() << "no exception; expected: " << c.message;
    } catch (const std::invalid_argument& error) {
      EXPECT_EQ(error.what(), c.message);
    }
  }
}

TEST(LoremTest, CountsTooLargeForAStringThrowLengthErrorBeforeBuilding) {
  EXPECT_THROW(Lorem::words(kInt64Max), std::length_error);
  EXPECT_THROW(Lorem::sentences(kInt64Max), std::length_error);
  EXPECT_THROW(Lorem::paragraphs(kInt64Max), std::length_error);
  // The shortest possible words with their spaces already exceed the largest string.
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
  std::map<std::string_view, int> entries;
  for (const auto word : list) ++entries[word];
  std::map<std::string, int> drawn;
  for (int i = 0; i < kDraws; ++i) ++drawn[Lorem::word()];

  EXPECT_NEAR(drawn["et"], kDraws * 11.0 / 249.0, 700.0);
  double chiSquare = 0;
  for (const auto& [word, count] : entries) {
    const double expected = kDraws * static_cast<double>(count) / static_cast<double>(list.size());
    const double observed = drawn[std::string(word)];
    chiSquare += (observed - expected) * (observed - expected) / expected;
  }
  EXPECT_EQ(drawn.size(), entries.size());
  EXPECT_LT(chiSquare, 360.0);
}

}  // namespace
}  // namespace cardiolith
