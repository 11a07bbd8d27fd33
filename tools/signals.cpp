#include "signals.hpp"

#include <array>
#include <cstddef>
#include <cstdlib>

namespace bradep {

namespace {

constexpr std::array handled = {SIGINT, SIGTERM, SIGHUP};

std::atomic<bool> is_interrupted = false;
std::atomic<int>  interrupting_signal = 0;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

extern "C" void note(int signal) {
    interrupting_signal = signal;
    is_interrupted = true;
}

}  // namespace

Interruption::Interruption() {
    is_interrupted = false;
    struct sigaction noting {};
    noting.sa_handler = note;
    noting.sa_flags = static_cast<int>(SA_RESETHAND);  // a second signal ends the process
    for (std::size_t i = 0; i < handled.size(); ++i) {
        ::sigaction(handled[i], nullptr, &before_[i]);
        if (before_[i].sa_handler == SIG_DFL) ::sigaction(handled[i], &noting, nullptr);
    }
}

Interruption::~Interruption() {
    for (std::size_t i = 0; i < handled.size(); ++i) ::sigaction(handled[i], &before_[i], nullptr);
}

std::atomic<bool> const& Interruption::has_come() { return is_interrupted; }

void Interruption::end_process() {
    std::signal(interrupting_signal, SIG_DFL);
    std::raise(interrupting_signal);
    std::abort();  // not reached: the signal ends the process
}

}  // namespace bradep
