#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace cardiolith::tool {

// A bar of bytes read against the total on standard error, for work that takes more than a second. It
// appears only when standard error is a terminal, a second after it was made, and is redrawn at most ten
// times a second. CARDIOLITH_PROGRESS_DELAY_MS, when set to a whole number, replaces the second (tests set
// 0 to see the bar of a quick import). Not thread-safe.
class ProgressBar {
 public:
  explicit ProgressBar(std::string label);
  ~ProgressBar();  // clears the bar
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  // Starts over for one input of `total` bytes (0 when unknown) under a new label.
  void restart(std::string label, std::uint64_t total);
  // Corrects the total of the current input (0 when unknown).
  void setTotal(std::uint64_t total) { total_ = total; }
  void update(std::uint64_t done);

 private:
  using Clock = std::chrono::steady_clock;
  bool enabled_;
  Clock::duration delay_;
  bool shown_ = false;
  std::string label_;
  std::uint64_t total_ = 0;
  Clock::time_point started_ = Clock::now();
  Clock::time_point drawn_{};
};

}  // namespace cardiolith::tool
