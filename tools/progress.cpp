#include "progress.hpp"

#include <sml/inspect/text/quote.hpp>

#include <unistd.h>

#include <chrono>
#include <iostream>
#include <utility>

namespace bradep {

using namespace std::chrono_literals;

Progress::Progress(std::ostream& err, std::string const& name, std::optional<std::uint64_t> total)
    : err_(err), name_(sml::inspect::printable(name)), total_(total) {
    if (&err == &std::cerr && total != 0 && ::isatty(STDERR_FILENO) != 0)
        thread_ = std::thread([this] { show(); });
}

Progress::~Progress() {
    if (!thread_.joinable()) return;
    {
        std::lock_guard const lock(mutex_);
        is_over_ = true;
    }
    over_.notify_one();
    thread_.join();
}

void Progress::show() {
    std::unique_lock lock(mutex_);
    bool             is_shown = false;
    for (auto pause = 1000ms; !over_.wait_for(lock, pause, [this] { return is_over_; });
         pause = 200ms) {
        err_ << '\r' << name_;
        if (total_) err_ << ": " << done_.load(std::memory_order_relaxed) * 100 / *total_ << " %";
        err_ << std::flush;
        is_shown = true;
    }
    if (is_shown) err_ << "\r\x1B[K" << std::flush;
}

}  // namespace bradep
