#include "render/progress_bar.hpp"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace cardiolith::tool {
namespace {

constexpr auto kDelay = std::chrono::seconds(1);
constexpr const char* kDelayVariable = "CARDIOLITH_PROGRESS_DELAY_MS";
constexpr auto kRedrawEvery = std::chrono::milliseconds(100);
constexpr int kWidth = 30;

std::string megabytes(std::uint64_t bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / 1e6);
  return text;
}

// How long work runs before its bar appears: kDelay, unless the environment names another whole number of
// milliseconds.
std::chrono::steady_clock::duration appearanceDelay() {
  const char* text = std::getenv(kDelayVariable);
  if (text == nullptr) return kDelay;
  const std::string_view value(text);
  unsigned milliseconds = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), milliseconds);
  if (error != std::errc{} || end != value.data() + value.size() || value.empty()) return kDelay;
  return std::chrono::milliseconds(milliseconds);
}

}  // namespace

ProgressBar::ProgressBar(std::string label)
    : enabled_(::isatty(STDERR_FILENO) == 1), delay_(appearanceDelay()), label_(std::move(label)) {}

ProgressBar::~ProgressBar() {
  if (shown_) std::cerr << "\r\033[K" << std::flush;
}

void ProgressBar::restart(std::string label, std::uint64_t total) {
  label_ = std::move(label);
  total_ = total;
}

void ProgressBar::update(std::uint64_t done) {
  if (!enabled_) return;
  const auto now = Clock::now();
  if (now - started_ < delay_ || now - drawn_ < kRedrawEvery) return;
  drawn_ = now;
  shown_ = true;
  std::string line = "\r" + label_ + " ";
  if (total_ > 0) {
    const double fraction = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
    const int filled = static_cast<int>(fraction * kWidth);
    line += "[" + std::string(static_cast<std::size_t>(filled), '#') +
            std::string(static_cast<std::size_t>(kWidth - filled), '.') + "] " +
            std::to_string(static_cast<int>(fraction * 100)) + "% " + megabytes(done) + " of " +
            megabytes(total_);
  } else {
    line += megabytes(done);
  }
  std::cerr << line << "\033[K" << std::flush;
}

}  // namespace cardiolith::tool
