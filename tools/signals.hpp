#pragma once
// Signals that must not end the process where they arrive.

#include <atomic>
#include <csignal>
#include <exception>

namespace bradep {

/// Ignores a signal while it lives. With SIGXFSZ ignored, a write beyond the process's file size
/// limit fails as on a full disk; by default the signal would end the process.
class IgnoredSignal {
public:
    explicit IgnoredSignal(int signal) : signal_(signal), before_(std::signal(signal, SIG_IGN)) {}
    ~IgnoredSignal() { std::signal(signal_, before_); }
    IgnoredSignal(IgnoredSignal const&) = delete;
    IgnoredSignal& operator=(IgnoredSignal const&) = delete;

private:
    int signal_;
    void (*before_)(int);
};

/// The process is to end.
struct Interrupted : std::exception {
    char const* what() const noexcept override { return "interrupted"; }
};

/// While it lives, the first SIGINT, SIGTERM or SIGHUP does not end the process, but work that
/// checks for it. A signal that is ignored, or handled by other code, stays so. There may be only
/// one object.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(Interruption const&) = delete;
    Interruption& operator=(Interruption const&) = delete;

    /// Whether such a signal has arrived.
    static std::atomic<bool> const& has_come();

    /// Throws Interrupted if one has.
    static void check() {
        if (has_come().load(std::memory_order_relaxed)) throw Interrupted();
    }

    /// Ends the process by the signal that has arrived.
    [[noreturn]] void end_process();

private:
    struct sigaction before_[3] = {};
};

}  // namespace bradep
