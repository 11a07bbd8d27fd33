#pragma once
// Progress of long work, shown only on a terminal.

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <thread>

namespace bradep {

/// Shows on one line of `err` which share of `total` is done, or only the name if `total` is not
/// known. The line is erased at the end. Nothing is shown in the first second, or if `err` is not
/// std::cerr or standard error is not a terminal. A thread of its own writes to `err` until the
/// destructor has returned.
class Progress {
public:
    Progress(std::ostream& err, std::string const& name,
             std::optional<std::uint64_t> total = std::nullopt);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    /// The work stores here how much is done. Null if nothing is shown.
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
