// SPDX-License-Identifier: Apache-2.0
// A member that most objects never use.
#pragma once

#include <memory>

namespace tidemark {

/// One pointer until `ref` is called for the first time; before that it reads as a fresh `T`.
template <typename T>
class Lazy {
public:
    Lazy() = default;
    Lazy(const Lazy& other) { copy(other); }
    Lazy& operator=(const Lazy& other) {
        if (this != &other) copy(other);
        return *this;
    }

    const T& get() const {
        static const T fresh{};
        return value_ ? *value_ : fresh;
    }
    T& ref() {
        if (!value_) value_ = std::make_unique<T>();
        return *value_;
    }
    bool isUsed() const { return value_ != nullptr; }
    void reset() { value_.reset(); }

private:
    void copy(const Lazy& other) {
        value_ = other.value_ ? std::make_unique<T>(*other.value_) : nullptr;
    }

    std::unique_ptr<T> value_;
};

} // namespace tidemark
