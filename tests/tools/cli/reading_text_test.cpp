// A person's notes made safe for the report's layouts.

#include "render/reading_text.hpp"

#include <gtest/gtest.h>

#include <utility>

namespace cardiolith::tool {
namespace {

TEST(ReadingTextTest, PlainNoteFoldsBreaksAndDropsControlCharacters) {
  const std::pair<const char*, const char*> cases[] = {
      {"dizzy after\r\nstanding up", "dizzy after standing up"},
      {"\tmissed  the\n\nmorning pill \n", "missed the morning pill"},
      {"bell\x07 and\x1b[31m red\x7f", "bell and[31m red"},
      {"C1\xc2\x85next \xc2\xa0kept", "C1next \xc2\xa0kept"},  // NEL dropped, no-break space kept
      {"line\u2028and\u2029paragraph", "line and paragraph"},
      {"caf\u00e9 \u2013 ok", "caf\u00e9 \u2013 ok"},
      {" \r\n\t\x01 ", ""},
  };
  for (const auto& [note, plain] : cases) EXPECT_EQ(plainNote(note), plain) << note;
}

}  // namespace
}  // namespace cardiolith::tool
