// An element that knows how many of its kind live and can be told to fail when it is copied.
#pragma once

#include <stdexcept>

namespace vxut::test {

class Counted {
public:
    static inline int living = 0;
    static inline int copiesUntilThrow = -1; // negative: never

    Counted() : Counted(0) {}
    Counted(int itsValue) : value(itsValue) { ++living; } // NOLINT(google-explicit-constructor)
    Counted(const Counted& other) : value(other.value) {
        if (copiesUntilThrow == 0) throw std::runtime_error("copy");
        if (copiesUntilThrow > 0) --copiesUntilThrow;
        ++living;
    }
    Counted(Counted&& other) noexcept : value(other.value) {
        other.value = -1;
        ++living;
    }
    Counted& operator=(const Counted&) = default;
    Counted& operator=(Counted&&) noexcept = default;
    ~Counted() { --living; }

    bool operator==(const Counted& other) const { return value == other.value; }
    bool operator<(const Counted& other) const { return value < other.value; }

    int value;
};

// For its scope, the copy after the given number of copies throws.
class ThrowingCopies {
public:
    explicit ThrowingCopies(int copiesBefore) { Counted::copiesUntilThrow = copiesBefore; }
    ~ThrowingCopies() { Counted::copiesUntilThrow = -1; }
};

} // namespace vxut::test
