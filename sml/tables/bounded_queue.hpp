#pragma once
// Hands values from one thread to another one.

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

namespace sml::tables {

/// A queue between a thread that puts values and one that takes them in the same order. It holds a
/// limited number of them, so that neither runs far ahead.
template <class Value>
class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t most) : most_(most) {}

    /// Waits while the queue is full. Returns false if it has been stopped.
    bool put(Value value) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return values_.size() < most_ || is_stopped_; });
        if (is_stopped_) return false;
        values_.push_back(std::move(value));
        changed_.notify_all();
        return true;
    }

    /// Nothing more will be put. Behind the last value, `take` throws the error if there is one.
    void end(std::exception_ptr error = nullptr) {
        std::unique_lock const lock(mutex_);
        is_ended_ = true;
        error_ = std::move(error);
        changed_.notify_all();
    }

    /// Waits for the next value. There is none behind the last one, or if the queue has been
    /// stopped.
    std::optional<Value> take() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !values_.empty() || is_ended_ || is_stopped_; });
        if (is_stopped_) return std::nullopt;
        if (values_.empty()) {
            if (error_) std::rethrow_exception(error_);
            return std::nullopt;
        }
        std::optional<Value> value(std::move(values_.front()));
        values_.pop_front();
        changed_.notify_all();
        return value;
    }

    /// Neither side needs the rest: nobody waits any longer.
    void stop() {
        std::unique_lock const lock(mutex_);
        is_stopped_ = true;
        changed_.notify_all();
    }

private:
    std::size_t             most_;
    std::mutex              mutex_;
    std::condition_variable changed_;
    std::deque<Value>       values_;
    std::exception_ptr      error_;
    bool                    is_ended_ = false;
    bool                    is_stopped_ = false;
};

}  // namespace sml::tables
