#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cardiolith/platform/process_info.hpp"
#include "event_logger_fixture.hpp"

namespace cardiolith::testing {
namespace {

using ::testing::ElementsAre;

struct ArgumentsCase {
  std::vector<std::string> arguments;
  bool dropped;
};

class EventLoggerLaunchArgumentConcurrencyTest : public EventLoggerFixture,
                                                 public ::testing::WithParamInterface<ArgumentsCase> {};

TEST_P(EventLoggerLaunchArgumentConcurrencyTest, DropsCallsOnlyForTheExactWholeArgument) {
  logger().setSubEventLoggers({sink("sink")});

  ProcessInfo::setArguments(GetParam().arguments);
  logger().log("event", AnalyticsParameters{{"k", 1}});
  logger().updateUserProperties({{"p", 2}});
  ProcessInfo::setArguments({"app"});
  logger().log("done");

  // The queue is serial: once "done" has arrived, anything queued before it has arrived as well.
  ASSERT_TRUE(journal->waitFor(eventLine("sink", "done")));
  std::vector<std::string> expected;
  if (!GetParam().dropped) {
    expected = {"library event event {k=1}", "sink event event {k=1}", "library properties {p=2}",
                "sink properties {p=2}"};
  }
  expected.insert(expected.end(), {"library event done absent", "sink event done absent"});
  EXPECT_EQ(journal->lines(), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, EventLoggerLaunchArgumentConcurrencyTest,
    ::testing::Values(ArgumentsCase{{"app", "-DONTLOGANALYTICS"}, true},
                      ArgumentsCase{{"-DONTLOGANALYTICS"}, true},  // argv[0] counts too
                      ArgumentsCase{{"app", "-x", "-DONTLOGANALYTICS", "DELETE_ALL_RECORDS"}, true},
                      ArgumentsCase{{"app"}, false}, ArgumentsCase{{}, false},
                      ArgumentsCase{{"app", "-DONTLOGANALYTICSX"}, false},
                      ArgumentsCase{{"app", "-DONTLOGANALYTICS=1"}, false},
                      ArgumentsCase{{"app", "--DONTLOGANALYTICS"}, false},
                      ArgumentsCase{{"app", "DONTLOGANALYTICS"}, false},
                      ArgumentsCase{{"app", "-dontloganalytics"}, false},
                      ArgumentsCase{{"app", " -DONTLOGANALYTICS"}, false},
                      ArgumentsCase{{"app", "-DONTLOGANALYTICS "}, false},
                      ArgumentsCase{{"app", "-DONTLOGANALYTIC"}, false},
                      ArgumentsCase{{"app -DONTLOGANALYTICS"}, false}));

using EventLoggerLaunchArgumentChangeConcurrencyTest = EventLoggerFixture;

TEST_F(EventLoggerLaunchArgumentChangeConcurrencyTest, ChecksTheArgumentsAnewOnEveryCall) {
  logger().setSubEventLoggers({sink("sink")});

  ProcessInfo::setArguments({"app"});
  logger().log("one");
  ProcessInfo::setArguments({"app", "-DONTLOGANALYTICS"});
  logger().log("two");
  ProcessInfo::setArguments({"app"});
  logger().log("three");
  ProcessInfo::setArguments({"app", "-DONTLOGANALYTICS"});
  logger().log("four");
  ProcessInfo::setArguments({"app"});
  logger().log("done");

  ASSERT_TRUE(journal->waitFor(eventLine("sink", "done")));
  EXPECT_THAT(journal->lines(),
              ElementsAre("library event one absent", "sink event one absent", "library event three absent",
                          "sink event three absent", "library event done absent", "sink event done absent"));
}

}  // namespace
}  // namespace cardiolith::testing
