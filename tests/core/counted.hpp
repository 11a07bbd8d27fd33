#pragma once
// A payload that counts its living objects and can be made to throw.

#include <sml/core/declare.hpp>

#include <cstdint>
#include <list>
#include <stdexcept>
#include <utility>

/// The exception that `Counted` throws.
struct Refusal : std::runtime_error {
    Refusal() : std::runtime_error("refused") {}
};

/// Several test types may hold it, so tests compare `alive` with its earlier value.
struct Counted {
    enum Refusing { nothing, making, copying, moving };

    static inline int      alive = 0;
    static inline Refusing refusing = nothing;

    std::int32_t            number = 0;
    std::list<std::int32_t> numbers;

    SML_FIELDS(Counted, number, numbers);

    Counted() {
        refuse(making);
        ++alive;
    }
    explicit Counted(std::int32_t n) : Counted() { number = n; }
    Counted(Counted const& other) : number(other.number), numbers(other.numbers) {
        refuse(copying);
        ++alive;
    }
    Counted(Counted&& other) : number(other.number), numbers(std::move(other.numbers)) {
        refuse(moving);
        ++alive;
    }
    Counted& operator=(Counted const& other) {
        refuse(copying);
        number = other.number;
        numbers = other.numbers;
        return *this;
    }
    Counted& operator=(Counted&&) = default;
    ~Counted() { --alive; }

private:
    static void refuse(Refusing step) {
        if (refusing == step) throw Refusal();
    }
};

/// While it lives, `Counted` throws at this step.
class Refuse {
public:
    explicit Refuse(Counted::Refusing step) { Counted::refusing = step; }
    ~Refuse() { Counted::refusing = Counted::nothing; }

    Refuse(Refuse const&) = delete;
    Refuse& operator=(Refuse const&) = delete;
};
