// A member that few of many records have: it takes the room of a pointer in those that do not.
#pragma once

#include <memory>
#include <utility>

template <class Value>
class Rare {
public:
    Rare() = default;
    ~Rare() = default;
    Rare(const Rare& other) : value(other.value ? std::make_unique<Value>(*other.value) : nullptr) {}
    Rare(Rare&&) noexcept = default;
    Rare& operator=(Rare other) noexcept {
        value = std::move(other.value);
        return *this;
    }

    // An empty one where there is none.
    const Value& Get() const {
        static const Value none;
        return value ? *value : none;
    }
    // Made where there is none.
    Value& Make() {
        if (!value) value = std::make_unique<Value>();
        return *value;
    }

private:
    std::unique_ptr<Value> value;
};
