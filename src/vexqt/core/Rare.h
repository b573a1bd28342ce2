#pragma once

#include <memory>

namespace vexqt {

/// A value that few objects have. Where it was never set it takes no more than a pointer.
template <class T>
class Rare {
public:
    /// None.
    Rare() = default;
    /// With a value of its own.
    Rare(const Rare& other) : held_(other.held_ ? std::make_unique<T>(*other.held_) : nullptr) {}
    Rare(Rare&&) noexcept = default;
    Rare& operator=(Rare other) noexcept {
        held_.swap(other.held_);
        return *this;
    }
    ~Rare() = default;

    /// Whether it was set.
    explicit operator bool() const { return held_ != nullptr; }
    /// The value, which was set.
    const T* operator->() const { return held_.get(); }
    /// The value, which was set.
    const T& operator*() const { return *held_; }
    /// The value, made where there was none.
    T& made() {
        if (!held_) held_ = std::make_unique<T>();
        return *held_;
    }

private:
    std::unique_ptr<T> held_;
};

}  // namespace vexqt
