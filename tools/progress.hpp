#pragma once
// How far long work has come, on a terminal only.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <thread>

namespace bradep {

/// Shows the share of `total`, or no share where that is not known, on one line of `err` that goes
/// away at the end. Nothing is shown in the first second, nor where `err` is not the terminal's
/// standard error.
class Progress {
public:
    Progress(std::ostream& err, std::string const& name,
             std::optional<std::uint64_t> total = std::nullopt);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    /// For the work to store into; null where nothing is shown.
    std::atomic<std::uint64_t>* done() { return thread_.joinable() ? &done_ : nullptr; }

private:
    void show();

    std::ostream&                err_;
    std::string                  name_;
    std::optional<std::uint64_t> total_;
    std::atomic<std::uint64_t>   done_ = 0;
    bool                         is_over_ = false;
    std::mutex                   mutex_;
    std::condition_variable      over_;
    std::thread                  thread_;
};

}  // namespace bradep
