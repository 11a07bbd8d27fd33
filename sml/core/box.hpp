#pragma once
// One owned heap object, for recursive types.

#include <memory>
#include <utility>

namespace sml::core {

/// Owns one `T` on the heap. Default construction makes it, copies are deep, comparison is that of
/// the values. A box is null only after a move: then it may be destroyed, assigned and copied,
/// nothing else.
template <class T>
class Box {
public:
    Box() : object_(new T()) {}
    explicit Box(T const& value) : object_(new T(value)) {}
    Box(Box const& other) : object_(other.object_ ? new T(*other.object_) : nullptr) {}
    Box(Box&& other) noexcept : object_(std::move(other.object_)) {}

    // The source may be inside the object held here, so that object is destroyed last.
    Box& operator=(Box const& other) {
        Box copy(other);
        object_.swap(copy.object_);
        return *this;
    }
    Box& operator=(Box&& other) noexcept {
        Box taken(std::move(other));
        object_.swap(taken.object_);
        return *this;
    }

    ~Box() = default;

    T&       operator*() noexcept { return *object_; }
    T const& operator*() const noexcept { return *object_; }
    T*       operator->() noexcept { return object_.get(); }
    T const* operator->() const noexcept { return object_.get(); }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    bool operator==(Box const& other) const { return *object_ == *other.object_; }
    bool operator<(Box const& other) const { return *object_ < *other.object_; }

private:
    std::unique_ptr<T> object_;
};

}  // namespace sml::core
