#include "cardiolith/analytics/event_logger.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <iterator>
#include <latch>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "cardiolith/platform/logger.hpp"
#include "cardiolith/platform/process_info.hpp"

namespace cardiolith {
namespace {

using ::testing::HasSubstr;
using ::testing::ThrowsMessage;
using Lines = std::vector<std::string>;

// A thread-safe list of lines, shared by every receiver of a test so that it shows the order across them.
class Record {
 public:
  void add(std::string line) {
    std::lock_guard lock(mutex_);
    lines_.push_back(std::move(line));
    added_.notify_all();
  }
  // The lines once there are `count` of them; after a generous bound whatever arrived, so that a lost
  // delivery fails the test instead of hanging it.
  Lines await(std::size_t count) {
    std::unique_lock lock(mutex_);
    added_.wait_for(lock, std::chrono::seconds(60), [&] { return lines_.size() >= count; });
    return lines_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable added_;
  Lines lines_;
};

std::string describe(const std::optional<AnalyticsParameters>& parameters) {
  if (!parameters) return "absent";
  std::string out = "{";
  for (const auto& [key, value] : *parameters) {
    const auto* number = std::any_cast<int>(&value);
    const auto* text = std::any_cast<std::string>(&value);
    out += (out.size() > 1 ? ", " : "") + key + "=" + (number ? std::to_string(*number) : text ? *text : "?");
  }
  return out + "}";
}

std::string threadName() {
  char name[16] = {};
  pthread_getname_np(pthread_self(), name, sizeof name);
  return name;
}

// Plays the analytics library or a sink: records "<label> event <name> <parameters>" or "<label> user
// <properties>", adding the thread's name unless it is the analytics queue's, then runs `then`.
class Recorder : public AnalyticsBackend, public SubEventLogger {
 public:
  Recorder(std::shared_ptr<Record> record, std::string label, std::function<void()> then = {})
      : record_(std::move(record)), label_(std::move(label)), then_(std::move(then)) {}

  void log(const std::string& name, const std::optional<AnalyticsParameters>& parameters) override {
    add(" event " + name + " " + describe(parameters));
  }
  void updateUserProperties(const AnalyticsParameters& properties) override {
    add(" user " + describe(properties));
  }
  void logEvent(const std::string& name, const std::optional<AnalyticsParameters>& params) override {
    log(name, params);
  }
  void updateUserProperties(const std::optional<AnalyticsParameters>& properties) override {
    add(" user " + describe(properties));
  }
  void loggedAssertionFailure(const std::optional<std::string>&, std::string_view, std::string_view,
                              int) override {}

 private:
  void add(const std::string& delivery) {
    const auto thread = threadName();
    record_->add(label_ + delivery + (thread == "analytics" ? "" : " on thread " + thread));
    if (then_) then_();
  }

  std::shared_ptr<Record> record_;
  std::string label_;
  std::function<void()> then_;
};

EventLogger& logger() { return EventLogger::shared(); }

// Records the analytics library's deliveries as "library ..." and starts without sinks. Afterwards waits
// for everything queued, so that nothing spills into the next test, and restores what the test changed.
class EventLoggerConcurrencyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(threadName(), "analytics");  // So that the recorders tell the caller's thread apart.
    OstrelAnalyticsLogger::shared().setBackend(std::make_shared<Recorder>(record, "library"));
    logger().setSubEventLoggers({});
  }
  void TearDown() override {
    ProcessInfo::setArguments(originalArguments_);
    const auto drained = std::make_shared<Record>();
    logger().setSubEventLoggers({std::make_shared<Recorder>(drained, "drain")});
    logger().log("drain");
    EXPECT_EQ(drained->await(1).size(), 1u);
    logger().setSubEventLoggers({});
    OstrelAnalyticsLogger::shared().setBackend(nullptr);
    Logger::setHandler(nullptr);
  }

  std::shared_ptr<Recorder> sink(const std::string& label, std::function<void()> then = {}) {
    return std::make_shared<Recorder>(record, label, std::move(then));
  }

  std::shared_ptr<Record> record = std::make_shared<Record>();

 private:
  Lines originalArguments_ = ProcessInfo::arguments();
};

TEST_F(EventLoggerConcurrencyTest, DeliversInCallOrderToTheLibraryThenEachSinkKeepingAbsentAndEmptyApart) {
  logger().setSubEventLoggers({sink("a"), sink("b"), sink("c")});
  Lines expected;
  for (int step = 0; step < 300; ++step) {
    std::optional<AnalyticsParameters> parameters;
    if (step % 3 == 1) parameters.emplace();
    if (step % 3 == 2) parameters = AnalyticsParameters{{"n", step}, {"text", std::string("tea")}};
    std::string delivery;
    if (step % 7 == 3) {
      logger().updateUserProperties(parameters.value_or(AnalyticsParameters{}));
      delivery = " user " + describe(parameters.value_or(AnalyticsParameters{}));
    } else {
      logger().log("e" + std::to_string(step), parameters);
      delivery = " event e" + std::to_string(step) + " " + describe(parameters);
    }
    for (const auto* label : {"library", "a", "b", "c"}) expected.push_back(label + delivery);
  }
  EXPECT_EQ(record->await(expected.size()), expected);
}

TEST_F(EventLoggerConcurrencyTest, EachCallDeliversToTheSinksSetWhenItWasMade) {
  std::latch entered{1};
  std::latch opened{1};
  logger().setSubEventLoggers({sink("gate", [&] {
    entered.count_down();
    opened.wait();
  })});
  logger().log("blocker");
  entered.wait();  // Nothing queued from here on can run before the gate opens.

  const auto kept = sink("kept");
  const auto added = sink("added");
  logger().setSubEventLoggers({sink("removed"), kept});
  logger().log("before");
  logger().updateUserProperties({{"p", 1}});
  logger().setSubEventLoggers({kept, added});
  const auto setNullSink = [&] { logger().setSubEventLoggers({added, nullptr}); };
  EXPECT_THAT(setNullSink, ThrowsMessage<std::invalid_argument>(HasSubstr("subEventLoggers[1]")));
  EXPECT_EQ(logger().subEventLoggers(), (std::vector<std::shared_ptr<SubEventLogger>>{kept, added}));
  logger().log("after");
  opened.count_down();

  const Lines expected{
      "library event blocker absent", "gate event blocker absent", "library event before absent",
      "removed event before absent",  "kept event before absent",  "library user {p=1}",
      "removed user {p=1}",           "kept user {p=1}",           "library event after absent",
      "kept event after absent",      "added event after absent"};
  EXPECT_EQ(record->await(expected.size()), expected);
}

TEST_F(EventLoggerConcurrencyTest, DropsCallsWhileTheExactWholeArgumentIsPresent) {
  const std::pair<Lines, bool> cases[] = {
      {{"app", "-DONTLOGANALYTICS"}, true},
      {{"app"}, false},
      {{"-DONTLOGANALYTICS"}, true},  // argv[0] counts too
      {{}, false},
      {{"app", "-x", "-DONTLOGANALYTICS", "y"}, true},
      {{"app", "-DONTLOGANALYTICSX"}, false},
      {{"app", "-DONTLOGANALYTICS=1"}, false},
      {{"app", "--DONTLOGANALYTICS"}, false},
      {{"app", "DONTLOGANALYTICS"}, false},
      {{"app", "-dontloganalytics"}, false},
      {{"app", " -DONTLOGANALYTICS"}, false},
      {{"app", "-DONTLOGANALYTIC"}, false},
      {{"app -DONTLOGANALYTICS"}, false},
  };
  Lines expected;
  for (std::size_t index = 0; index < std::size(cases); ++index) {
    const auto& [arguments, dropped] = cases[index];
    ProcessInfo::setArguments(arguments);
    logger().log(std::to_string(index));
    logger().updateUserProperties({{"case", static_cast<int>(index)}});
    if (dropped) continue;
    expected.push_back("library event " + std::to_string(index) + " absent");
    expected.push_back("library user {case=" + std::to_string(index) + "}");
  }
  EXPECT_EQ(record->await(expected.size()), expected);
}

TEST_F(EventLoggerConcurrencyTest, AThrowingReceiverIsLoggedAndSkippedWithoutStoppingLaterOnes) {
  Logger::setHandler([record = record](const LogRecord& entry) {
    if (entry.level == LogLevel::error) record->add("error: " + std::string(entry.message));
  });
  OstrelAnalyticsLogger::shared().setBackend(
      std::make_shared<Recorder>(record, "library", [] { throw std::logic_error("library broke"); }));
  logger().setSubEventLoggers({sink("before"), sink("std", [] { throw std::runtime_error("sink broke"); }),
                               sink("after"), sink("other", [] { throw 42; })});

  logger().log("first");
  logger().updateUserProperties({});

  const std::string other = "an exception not derived from std::exception";
  const Lines expected{"library event first absent",
                       "error: Analytics library failed on event \"first\": library broke",
                       "before event first absent",
                       "std event first absent",
                       "error: Analytics sink at index 1 failed on event \"first\": sink broke",
                       "after event first absent",
                       "other event first absent",
                       "error: Analytics sink at index 3 failed on event \"first\": " + other,
                       "library user {}",
                       "error: Analytics library failed on user properties update: library broke",
                       "before user {}",
                       "std user {}",
                       "error: Analytics sink at index 1 failed on user properties update: sink broke",
                       "after user {}",
                       "other user {}",
                       "error: Analytics sink at index 3 failed on user properties update: " + other};
  EXPECT_EQ(record->await(expected.size()), expected);
}

TEST_F(EventLoggerConcurrencyTest, CallsFromSeveralThreadsKeepEachThreadsOrderWhileSinksChange) {
  constexpr int threadCount = 4;
  constexpr int eventsPerThread = 200;
  const std::vector<std::shared_ptr<SubEventLogger>> spare{
      std::make_shared<Recorder>(std::make_shared<Record>(), "spare")};
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < threadCount; ++thread) {
    threads.emplace_back([thread] {
      for (int n = 0; n < eventsPerThread; ++n) {
        logger().log("t" + std::to_string(thread), AnalyticsParameters{{"n", n}});
      }
    });
  }
  threads.emplace_back([&] {
    for (int change = 0; change < eventsPerThread; ++change) {
      logger().setSubEventLoggers(logger().subEventLoggers().empty() ? spare : decltype(spare){});
    }
  });
  threads.clear();

  const auto lines = record->await(threadCount * eventsPerThread);
  for (int thread = 0; thread < threadCount; ++thread) {
    const std::string prefix = "library event t" + std::to_string(thread) + " ";
    Lines own;
    Lines expected;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(own),
                 [&](const std::string& line) { return line.starts_with(prefix); });
    for (int n = 0; n < eventsPerThread; ++n) expected.push_back(prefix + "{n=" + std::to_string(n) + "}");
    EXPECT_EQ(own, expected);
  }
}

}  // namespace
}  // namespace cardiolith
