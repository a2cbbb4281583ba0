// How the tool hears of a tags file it can't read and of a tag save that failed: from the library's own
// status, whatever the log says.

#include "log/tag_list.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "platform/write_faults.hpp"
#include "support/temporary_directory.hpp"
#include "tool_error.hpp"

namespace cardiolith::tool {
namespace {

using ::testing::HasSubstr;

class TagListTest : public ::testing::Test {
 protected:
  void writeTagsFile(const std::string& content) const { std::ofstream(folder_.tagsFile()) << content; }

  testing::TemporaryDirectory directory_;
  DataFolder folder_{GlobalOptions{directory_.path()}};
};

TEST_F(TagListTest, ChangeIsRefusedWhenTheTagsFileCannotBeRead) {
  EXPECT_NO_THROW(TagList(folder_).requireReadable()) << "first use: no tags file yet";
  for (const char* damaged : {"[{\"id\":", "7"}) {
    writeTagsFile(damaged);
    EXPECT_THROW(TagList(folder_).requireReadable(), ToolError) << damaged;
  }
}

TEST_F(TagListTest, FailedSaveIsReportedAndTheNextOneSucceeds) {
  TagList tags(folder_);
  detail::write_faults::failAfter(5);
  tags.manager().insert(Tag{UUID::random(), "Clinic", "34c759"});
  try {
    tags.finishSaving();
    ADD_FAILURE() << "a save that hit a full disk was reported as a success";
  } catch (const ToolError& error) {
    EXPECT_THAT(error.what(), HasSubstr("could not be saved to " + folder_.tagsFile().string()));
  }
  detail::write_faults::failAfter(std::nullopt);

  tags.manager().insert(Tag{UUID::random(), "Home", "007aff"});
  EXPECT_NO_THROW(tags.finishSaving());
  EXPECT_TRUE(TagList(folder_).lookUp("Clinic"));
}

}  // namespace
}  // namespace cardiolith::tool
