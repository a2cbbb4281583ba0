#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <future>
#include <map>
#include <stdexcept>
#include <thread>
#include <utility>

#include "cardiolith/platform/logger.hpp"
#include "event_logger_fixture.hpp"

namespace cardiolith::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;

using EventLoggerDeliveryConcurrencyTest = EventLoggerFixture;

TEST_F(EventLoggerDeliveryConcurrencyTest, DeliversEveryCallInCallOrderToTheLibraryThenEachSinkInArrayOrder) {
  const std::vector<std::string> labels{"first", "second", "third"};
  logger().setSubEventLoggers({sink(labels[0]), sink(labels[1]), sink(labels[2])});

  std::vector<std::string> expected;
  auto expectEverywhere = [&](auto line) {
    expected.push_back(line("library"));
    for (const auto& label : labels) expected.push_back(line(label));
  };
  for (int step = 0; step < 300; ++step) {
    if (step % 7 == 3) {
      const AnalyticsParameters properties{{"step", step}};
      logger().updateUserProperties(properties);
      expectEverywhere([&](const std::string& label) { return propertiesLine(label, properties); });
    } else {
      const std::string name = "event-" + std::to_string(step);
      const AnalyticsParameters parameters{{"step", step}};
      logger().log(name, parameters);
      expectEverywhere([&](const std::string& label) { return eventLine(label, name, parameters); });
    }
  }
  logger().log("done");
  expectEverywhere([](const std::string& label) { return eventLine(label, "done"); });

  ASSERT_TRUE(journal->waitFor(eventLine("third", "done")));
  EXPECT_THAT(journal->lines(), ElementsAreArray(expected));
}

TEST_F(EventLoggerDeliveryConcurrencyTest, PassesParametersAsGivenKeepingAbsentAndEmptyApart) {
  logger().setSubEventLoggers({sink("sink")});
  const AnalyticsParameters values{{"text", std::string("tea")},
                                   {"count", 7},
                                   {"big", std::int64_t{1} << 40},
                                   {"ratio", 1.5},
                                   {"on", true}};

  logger().log("absent");
  logger().log("empty", AnalyticsParameters{});
  logger().log("values", values);
  logger().updateUserProperties({});
  logger().updateUserProperties(values);
  logger().log("done");

  ASSERT_TRUE(journal->waitFor(eventLine("sink", "done")));
  const std::string valueText = "{big=1099511627776L, count=7, on=true, ratio=1.500000, text=tea}";
  EXPECT_THAT(journal->lines(),
              ElementsAre("library event absent absent", "sink event absent absent",  //
                          "library event empty {}", "sink event empty {}",            //
                          "library event values " + valueText, "sink event values " + valueText,
                          "library properties {}", "sink properties {}",  //
                          "library properties " + valueText, "sink properties " + valueText,
                          "library event done absent", "sink event done absent"));
}

TEST_F(EventLoggerDeliveryConcurrencyTest, LibraryReceivesEverythingWhenNoSinkIsSet) {
  logger().log("alone", AnalyticsParameters{{"k", 1}});
  logger().updateUserProperties({{"p", 2}});
  logger().log("done");

  ASSERT_TRUE(journal->waitFor(eventLine("library", "done")));
  EXPECT_THAT(journal->lines(), ElementsAre("library event alone {k=1}", "library properties {p=2}",
                                            "library event done absent"));
}

// Holds the queue inside its first delivery until the test opens it.
class GateSink : public SubEventLogger {
 public:
  void log(const std::string&, const std::optional<AnalyticsParameters>&) override { wait(); }
  void updateUserProperties(const AnalyticsParameters&) override { wait(); }

  void waitUntilEntered() { entered_.get_future().wait(); }
  void open() { opened_.set_value(); }

 private:
  void wait() {
    if (!hasEntered_.exchange(true)) entered_.set_value();
    openedFuture_.wait();
  }

  std::atomic<bool> hasEntered_{false};
  std::promise<void> entered_;
  std::promise<void> opened_;
  std::shared_future<void> openedFuture_ = opened_.get_future().share();
};

TEST_F(EventLoggerDeliveryConcurrencyTest, EachCallDeliversToTheSinksSetWhenItWasMade) {
  const auto gate = std::make_shared<GateSink>();
  const auto kept = sink("kept");
  const auto removed = sink("removed");
  const auto added = sink("added");

  logger().setSubEventLoggers({gate});
  logger().log("blocker");
  gate->waitUntilEntered();  // From here on nothing queued below can run before the gate opens.

  logger().setSubEventLoggers({removed, kept});
  logger().log("before");
  logger().updateUserProperties({{"p", 1}});
  logger().setSubEventLoggers({kept, added});
  logger().log("after");
  EXPECT_EQ(logger().subEventLoggers(), (std::vector<std::shared_ptr<SubEventLogger>>{kept, added}));
  gate->open();

  ASSERT_TRUE(journal->waitFor(eventLine("added", "after")));
  EXPECT_THAT(
      journal->lines(),
      ElementsAre("library event blocker absent",  //
                  "library event before absent", "removed event before absent", "kept event before absent",
                  "library properties {p=1}", "removed properties {p=1}", "kept properties {p=1}",
                  "library event after absent", "kept event after absent", "added event after absent"));
}

class ThrowingSink : public SubEventLogger {
 public:
  explicit ThrowingSink(bool standardException) : standardException_(standardException) {}
  void log(const std::string& name, const std::optional<AnalyticsParameters>&) override {
    fail("log " + name);
  }
  void updateUserProperties(const AnalyticsParameters&) override { fail("properties"); }

 private:
  void fail(const std::string& what) const {
    if (standardException_) throw std::runtime_error("sink broke on " + what);
    throw 42;
  }
  bool standardException_;
};

class ThrowingBackend : public RecordingBackend {
 public:
  using RecordingBackend::RecordingBackend;
  void logEvent(const std::string& name, const std::optional<AnalyticsParameters>& params) override {
    RecordingBackend::logEvent(name, params);
    throw std::logic_error("library broke");
  }
};

// Collects error-level log records, from whichever thread logs them.
std::shared_ptr<Journal> collectErrorLogs() {
  auto errors = std::make_shared<Journal>();
  Logger::setHandler([errors](const LogRecord& record) {
    if (record.level == LogLevel::error) errors->add(std::string(record.message));
  });
  return errors;
}

TEST_F(EventLoggerDeliveryConcurrencyTest, ThrowingSinkIsLoggedAndSkippedWithoutStoppingLaterSinksOrCalls) {
  const auto errors = collectErrorLogs();
  logger().setSubEventLoggers({sink("before"), std::make_shared<ThrowingSink>(true), sink("after"),
                               std::make_shared<ThrowingSink>(false)});

  logger().log("first");
  logger().updateUserProperties({});
  logger().log("second");

  ASSERT_TRUE(journal->waitFor(eventLine("after", "second")));
  ASSERT_TRUE(
      errors->waitFor("Analytics sink at index 3 failed on event \"second\": "
                      "an exception not derived from std::exception"));
  EXPECT_THAT(
      journal->lines(),
      ElementsAre("library event first absent", "before event first absent", "after event first absent",
                  "library properties {}", "before properties {}", "after properties {}",
                  "library event second absent", "before event second absent", "after event second absent"));
  EXPECT_THAT(
      errors->lines(),
      ElementsAre(
          "Analytics sink at index 1 failed on event \"first\": sink broke on log first",
          "Analytics sink at index 3 failed on event \"first\": an exception not derived from std::exception",
          "Analytics sink at index 1 failed on user properties update: sink broke on properties",
          "Analytics sink at index 3 failed on user properties update: an exception not derived from "
          "std::exception",
          "Analytics sink at index 1 failed on event \"second\": sink broke on log second",
          "Analytics sink at index 3 failed on event \"second\": an exception not derived from "
          "std::exception"));
}

TEST_F(EventLoggerDeliveryConcurrencyTest, ThrowingLibraryIsLoggedAndTheSinksStillReceiveTheEvent) {
  const auto errors = collectErrorLogs();
  OstrelAnalyticsLogger::shared().setBackend(std::make_shared<ThrowingBackend>(journal));
  logger().setSubEventLoggers({sink("sink")});

  logger().log("event");

  ASSERT_TRUE(journal->waitFor(eventLine("sink", "event")));
  EXPECT_THAT(journal->lines(), ElementsAre("library event event absent", "sink event event absent"));
  EXPECT_THAT(errors->lines(), ElementsAre("Analytics library failed on event \"event\": library broke"));
}

// Records on which thread each delivery ran.
class ThreadProbeSink : public SubEventLogger {
 public:
  void log(const std::string&, const std::optional<AnalyticsParameters>&) override { record(); }
  void updateUserProperties(const AnalyticsParameters&) override { record(); }

  struct Sighting {
    std::thread::id id;
    std::string name;
  };
  std::vector<Sighting> sightings() const {
    std::lock_guard lock(mutex_);
    return sightings_;
  }

 private:
  void record() {
    char name[16] = {};
    pthread_getname_np(pthread_self(), name, sizeof name);
    std::lock_guard lock(mutex_);
    sightings_.push_back({std::this_thread::get_id(), name});
  }

  mutable std::mutex mutex_;
  std::vector<Sighting> sightings_;
};

TEST_F(EventLoggerDeliveryConcurrencyTest, DeliversOnTheAnalyticsThreadNeverOnTheCallersThread) {
  const auto probe = std::make_shared<ThreadProbeSink>();
  logger().setSubEventLoggers({probe, sink("marker")});

  logger().log("event");
  logger().updateUserProperties({});
  logger().log("done");

  ASSERT_TRUE(journal->waitFor(eventLine("marker", "done")));
  const auto sightings = probe->sightings();
  ASSERT_EQ(sightings.size(), 3u);
  for (const auto& sighting : sightings) {
    EXPECT_EQ(sighting.name, "analytics");
    EXPECT_NE(sighting.id, std::this_thread::get_id());
  }
}

TEST_F(EventLoggerDeliveryConcurrencyTest, CallsFromSeveralThreadsKeepEachThreadsOrderWhileSinksChange) {
  constexpr int threadCount = 4;
  constexpr int eventsPerThread = 200;
  const auto spare = sink("spare");
  std::vector<std::thread> threads;
  for (int thread = 0; thread < threadCount; ++thread) {
    threads.emplace_back([thread] {
      for (int event = 0; event < eventsPerThread; ++event) {
        logger().log("t" + std::to_string(thread), AnalyticsParameters{{"n", event}});
      }
    });
  }
  threads.emplace_back([&] {
    for (int change = 0; change < eventsPerThread; ++change) {
      auto sinks = logger().subEventLoggers();
      if (sinks.empty()) {
        sinks.push_back(spare);
      } else {
        sinks.clear();
      }
      logger().setSubEventLoggers(std::move(sinks));
    }
  });
  for (auto& thread : threads) thread.join();
  logger().setSubEventLoggers({sink("marker")});
  logger().log("done");

  ASSERT_TRUE(journal->waitFor(eventLine("marker", "done")));
  // Per receiver and thread, the numbers must run 0, 1, 2, ... without gaps at the library and in order
  // (with gaps where the sink was not set) at the spare sink.
  std::map<std::string, int> nextAtLibrary;
  std::map<std::string, int> lastAtSpare;
  for (const auto& line : journal->lines()) {
    if (line.find(" event t") == std::string::npos) continue;
    const auto threadName = line.substr(line.find(" event ") + 7, 2);
    const int number = std::stoi(line.substr(line.find("{n=") + 3));
    if (line.rfind("library ", 0) == 0) {
      EXPECT_EQ(number, nextAtLibrary[threadName]++) << line;
    } else {
      auto [last, inserted] = lastAtSpare.emplace(threadName, number);
      if (!inserted) {
        EXPECT_GT(number, std::exchange(last->second, number)) << line;
      }
    }
  }
  EXPECT_EQ(nextAtLibrary.size(), static_cast<std::size_t>(threadCount));
  for (const auto& [thread, next] : nextAtLibrary) EXPECT_EQ(next, eventsPerThread) << thread;
}

TEST_F(EventLoggerDeliveryConcurrencyTest, SinkListKeepsItsOrderAndRejectsANullSink) {
  const auto a = sink("a");
  const auto b = sink("b");
  logger().setSubEventLoggers({b, a});
  EXPECT_EQ(logger().subEventLoggers(), (std::vector<std::shared_ptr<SubEventLogger>>{b, a}));

  try {
    logger().setSubEventLoggers({a, nullptr});
    FAIL() << "a null sink was accepted";
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(), HasSubstr("subEventLoggers[1]"));
  }
  EXPECT_EQ(logger().subEventLoggers(), (std::vector<std::shared_ptr<SubEventLogger>>{b, a}));
}

}  // namespace
}  // namespace cardiolith::testing
