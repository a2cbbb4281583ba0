#include "cardiolith/analytics/event_logger.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <condition_variable>
#include <functional>
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
struct Record {
  void add(std::string line) {
    std::lock_guard lock(mutex);
    lines.push_back(std::move(line));
    added.notify_all();
  }
  // The lines once there are `count` of them; after a generous bound whatever arrived, so that a lost
  // delivery fails the test instead of hanging it.
  Lines await(std::size_t count) {
    std::unique_lock lock(mutex);
    added.wait_for(lock, std::chrono::seconds(60), [&] { return lines.size() >= count; });
    return lines;
  }

  std::mutex mutex;
  std::condition_variable added;
  Lines lines;
};

// "absent", or "{key=value, ...}" of integer values.
std::string describe(const std::optional<AnalyticsParameters>& parameters) {
  if (!parameters) return "absent";
  std::string out;
  for (const auto& [key, value] : *parameters) {
    out += (out.empty() ? "" : ", ") + key + "=" + std::to_string(std::any_cast<int>(value));
  }
  return "{" + out + "}";
}

// Plays the analytics library or a sink: records "<label> event <name> <parameters>" or "<label> user
// <properties>", adding the thread's name unless it is the analytics queue's, then runs `then`.
struct Recorder : AnalyticsBackend, SubEventLogger {
  using Parameters = std::optional<AnalyticsParameters>;
  Recorder(std::shared_ptr<Record> sharedRecord, std::string recorderLabel,
           std::function<void()> afterwards = {})
      : record(std::move(sharedRecord)), label(std::move(recorderLabel)), then(std::move(afterwards)) {}

  void add(const std::string& delivery) {
    char buffer[16] = {};
    pthread_getname_np(pthread_self(), buffer, sizeof buffer);
    const std::string thread = buffer;
    record->add(label + delivery + (thread == "analytics" ? "" : " on thread " + thread));
    if (then) then();
  }
  void log(const std::string& name, const Parameters& parameters) override {
    add(" event " + name + " " + describe(parameters));
  }
  void logEvent(const std::string& name, const Parameters& p) override { log(name, p); }
  void updateUserProperties(const AnalyticsParameters& p) override { add(" user " + describe(p)); }
  void updateUserProperties(const Parameters& p) override { add(" user " + describe(p)); }
  void loggedAssertionFailure(const std::optional<std::string>&, std::string_view, std::string_view,
                              int) override {}

  std::shared_ptr<Record> record;
  std::string label;
  std::function<void()> then;
};

EventLogger& logger() { return EventLogger::shared(); }

// Records the analytics library's deliveries as "library ..."; every test starts without sinks. Afterwards
// waits for everything queued, so that nothing spills into the next test, and restores what the test changed.
class EventLoggerConcurrencyTest : public ::testing::Test {
 protected:
  void SetUp() override { OstrelAnalyticsLogger::shared().setBackend(sink("library")); }
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
  const Lines originalArguments_ = ProcessInfo::arguments();
};

// Also shows the library served first and then the sinks in array order, and absent parameters kept apart
// from an empty map on both sides.
TEST_F(EventLoggerConcurrencyTest, EachCallDeliversToTheSinksSetWhenItWasMade) {
  // The gate holds the queue: every later call is delivered only once it opens, after all the changes.
  std::latch opened{1};
  logger().setSubEventLoggers({sink("gate", [&] { opened.wait(); })});
  logger().log("held");

  const auto kept = sink("kept"), added = sink("added");
  logger().setSubEventLoggers({sink("removed"), kept});
  logger().log("old", AnalyticsParameters{});
  logger().updateUserProperties({{"p", 1}});
  logger().setSubEventLoggers({kept, added});
  const auto setNullSink = [&] { logger().setSubEventLoggers({added, nullptr}); };
  EXPECT_THAT(setNullSink, ThrowsMessage<std::invalid_argument>(HasSubstr("subEventLoggers[1]")));
  EXPECT_EQ(logger().subEventLoggers(), (std::vector<std::shared_ptr<SubEventLogger>>{kept, added}));
  logger().log("new", AnalyticsParameters{{"m", 2}, {"n", 3}});
  opened.count_down();

  const Lines expected{
      "library event held absent", "gate event held absent",    "library event old {}",
      "removed event old {}",      "kept event old {}",         "library user {p=1}",
      "removed user {p=1}",        "kept user {p=1}",           "library event new {m=2, n=3}",
      "kept event new {m=2, n=3}", "added event new {m=2, n=3}"};
  EXPECT_EQ(record->await(expected.size()), expected);
}

TEST_F(EventLoggerConcurrencyTest, DropsCallsWhileTheExactWholeArgumentIsPresent) {
  // Dropped wherever the whole argument stands, argv[0] included. Only the last list, of near misses (longer,
  // shorter, another case, inside a larger argument), gets through; a leak of the others would come first.
  const Lines cases[] = {
      {"-DONTLOGANALYTICS"},
      {"app", "-x", "-DONTLOGANALYTICS", "y"},
      {"app", "-DONTLOGANALYTICSX", "-DONTLOGANALYTIC", "-dontloganalytics", "app -DONTLOGANALYTICS"}};
  for (int index = 0; index < 3; ++index) {
    ProcessInfo::setArguments(cases[index]);
    logger().log(std::to_string(index));
    logger().updateUserProperties({{"case", index}});
  }
  EXPECT_EQ(record->await(2), (Lines{"library event 2 absent", "library user {case=2}"}));
}

TEST_F(EventLoggerConcurrencyTest, AThrowingReceiverIsLoggedAndSkippedWithoutStoppingLaterOnes) {
  Logger::setHandler([record = record](const LogRecord& entry) {
    if (entry.level == LogLevel::error) record->add("error: " + std::string(entry.message));
  });
  OstrelAnalyticsLogger::shared().setBackend(
      sink("library", [] { throw std::logic_error("library broke"); }));
  logger().setSubEventLoggers({sink("before"), sink("other", [] { throw 42; }), sink("after")});

  logger().log("first");
  logger().updateUserProperties({});

  // The same failures, once for the event and once for the properties update.
  Lines expected;
  for (const auto& [delivery, failedOn] :
       {std::pair<std::string, std::string>{"event first absent", "event \"first\""},
        {"user {}", "user properties update"}}) {
    expected.insert(expected.end(), {"library " + delivery,
                                     "error: Analytics library failed on " + failedOn + ": library broke",
                                     "before " + delivery, "other " + delivery,
                                     "error: Analytics sink at index 1 failed on " + failedOn +
                                         ": an exception not derived from std::exception",
                                     "after " + delivery});
  }
  EXPECT_EQ(record->await(expected.size()), expected);
}

// Each thread's calls keep their order on the one queue while another thread swaps the sinks under them.
TEST_F(EventLoggerConcurrencyTest, CallsFromSeveralThreadsKeepEachThreadsOrderWhileSinksChange) {
  constexpr int threadCount = 4, eventsPerThread = 200;
  const std::vector<std::shared_ptr<SubEventLogger>> spare{
      std::make_shared<Recorder>(std::make_shared<Record>(), "spare")};
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < threadCount; ++thread) {
    threads.emplace_back([thread] {
      for (int n = 0; n < eventsPerThread; ++n) logger().log("t" + std::to_string(thread), {{{"n", n}}});
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
    Lines own, expected;
    for (const auto& line : lines) {
      if (line.starts_with(prefix)) own.push_back(line);
    }
    for (int n = 0; n < eventsPerThread; ++n) expected.push_back(prefix + "{n=" + std::to_string(n) + "}");
    EXPECT_EQ(own, expected);
  }
}

}  // namespace
}  // namespace cardiolith
