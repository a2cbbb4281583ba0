// --out never replaces the log's own files, whatever path names them, and never leaves a torn file: a
// failure says why and leaves the previous file as it was.

#include <sys/mount.h>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "tool_test.hpp"

namespace cardiolith::tool::testing {
namespace {

namespace fs = std::filesystem;

class OutputSafetyTest : public ToolTest {
 protected:
  OutputSafetyTest() { succeed({"add", "120/80/60", "--note", "first"}); }

  std::vector<fs::path> leftovers(const fs::path& folder) {
    std::vector<fs::path> temporaries;
    for (const auto& entry : fs::directory_iterator(folder)) {
      if (entry.path().filename().string().find(".tmp-") != std::string::npos)
        temporaries.push_back(entry.path());
    }
    return temporaries;
  }
};

TEST_F(OutputSafetyTest, RefusesEveryNameOfTheLogsOwnFiles) {
  fs::create_symlink(data_, root_ / "alias");
  fs::create_hard_link(readingsFile_, root_ / "hard-link");
  const std::string log = readFile(readingsFile_);
  const std::vector<std::pair<fs::path, std::string>> outs{
      {readingsFile_, "readings"},
      {tagsFile_, "tags"},  // not there yet: an export there would have become the tag list
      {data_ / "readings.lock", "readings.lock"},
      {data_ / "sub" / ".." / "readings", "readings"},
      {root_ / "alias" / "tags", "tags"},
      {root_ / "hard-link", "readings"},
  };
  for (const auto& [out, name] : outs) {
    for (const Arguments& command :
         {Arguments{"export", "--out", out.string()}, Arguments{"report", "-o", out.string()}}) {
      EXPECT_THAT(refusal(command), HasSubstr("won't write over " + (data_ / name).string())) << out;
    }
  }
  EXPECT_EQ(readFile(readingsFile_), log);
  EXPECT_FALSE(fs::exists(tagsFile_));
}

TEST_F(OutputSafetyTest, ReplacesThePreviousFileWhole) {
  const auto out = root_ / "export.csv";
  writeFile(out, std::string(100000, 'x'));
  succeed({"export", "--out", out.string()});
  EXPECT_EQ(readFile(out), succeed({"export"}));
  EXPECT_THAT(leftovers(root_), ::testing::IsEmpty());
}

// A full disk: the export fails with the reason, and the previous export is still whole.
TEST_F(OutputSafetyTest, AFullDiskLeavesThePreviousFileUntouched) {
  const auto small = root_ / "small";
  fs::create_directory(small);
  if (::mount("tmpfs", small.c_str(), "tmpfs", 0, "size=64k") != 0)
    GTEST_SKIP() << "can't mount a small tmpfs here (" << std::strerror(errno)
                 << "), so no full disk to test";
  const auto out = small / "export.csv";
  writeFile(out, "previous export\n");
  {
    std::ofstream filler(small / "filler", std::ios::binary);
    const std::string block(4096, 'f');
    while (filler.write(block.data(), static_cast<std::streamsize>(block.size()))) filler.flush();
  }
  EXPECT_THAT(refusal({"export", "--out", out.string()}),
              HasSubstr("couldn't write " + out.string() + ": the disk is full"));
  EXPECT_EQ(readFile(out), "previous export\n");
  EXPECT_THAT(leftovers(small), ::testing::IsEmpty());
  ::umount2(small.c_str(), MNT_DETACH);
}

}  // namespace
}  // namespace cardiolith::tool::testing
