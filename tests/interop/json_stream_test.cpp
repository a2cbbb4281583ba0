// The readings document reader streams its input: a broken document must fail with the same place named
// whatever the size of the blocks it is read in. That whole ones come back at any block size is the round
// trip's.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "cardiolith/interop/readings_document.hpp"
#include "cardiolith/model/json.hpp"
#include "interop/read_all.hpp"

namespace cardiolith::interop {
namespace {

using ::testing::HasSubstr;
using ::testing::Property;
using testing::readAll;
using ::testing::Throws;

TEST(ReadingsDocumentStream, BrokenDocumentsFailWithTheFaultNamedAtAnyBlockSize) {
  const std::string reading = R"({"id":"A","date":1,"systolic":120,"diastolic":80,"pulse":60})";
  const std::pair<std::string, std::string> cases[] = {
      // the document, and what its error names
      {R"({"readings":[)" + reading + R"(,{"id":"B","date":1,"systolic":1.5}]})",
       "readings[1].systolic: 1.5 is not an integer"},
      {R"({"readings":[)" + reading + " " + reading + "]}",
       "invalid JSON at byte 74: expected ',' or ']' after an element"},
      {R"({"readings":[)" + reading + ",tru]}", "readings[1], which starts at byte 74"},
      {R"({"readings":[{"id":"A)", "the file ends inside this string"},
      {R"({"readings":[]} x)", "unexpected 'x' after the document"},
      {R"({"other":[]})", "readings: missing"},
      {R"({"readings":{}})", "\"readings\" is not an array"},
      {R"({"other":[1,],"readings":[]})", "the value of \"other\""},
      {R"({"readings":[)" + reading + ",]}", "expected a value, found ']'"},
      {"[]", "expected an object ({) at the top of the document"},
  };
  for (const auto& [text, named] : cases) {
    EXPECT_THROW((void)json::decode<Readings>(text), DecodingError) << text;
    for (const std::size_t blockSize : {std::size_t{1}, std::size_t{7}, std::size_t{1} << 16}) {
      std::istringstream in(text);
      EXPECT_THAT([&] { (void)readAll(*readReadingsDocument(in, {.blockSize = blockSize})); },
                  Throws<ImportError>(Property(&ImportError::what, HasSubstr(named))))
          << text << " at blocks of " << blockSize;
    }
  }
}

}  // namespace
}  // namespace cardiolith::interop
