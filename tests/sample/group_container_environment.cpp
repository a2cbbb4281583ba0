// Every TagsManager that the sample data makes for itself uses StorageLocations::current(); this program
// points that at a temporary folder for its whole run, so no test touches the user's data.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <memory>

#include "support/temporary_directory.hpp"

namespace {

class TemporaryGroupContainer : public ::testing::Environment {
 public:
  void SetUp() override {
    folder_ = std::make_unique<cardiolith::testing::TemporaryDirectory>();
    // An empty stored list: managers get the default tags without logging a missing file.
    std::ofstream(folder_->path() / "tags") << "[]";
    ::setenv("CARDIOLITH_GROUP_CONTAINER", folder_->path().c_str(), 1);
  }
  void TearDown() override {
    ::unsetenv("CARDIOLITH_GROUP_CONTAINER");
    folder_.reset();
  }

 private:
  std::unique_ptr<cardiolith::testing::TemporaryDirectory> folder_;
};

[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(new TemporaryGroupContainer);

}  // namespace
