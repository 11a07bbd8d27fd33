#pragma once
// Saves a graph with the calls that a user of a serialisation library writes by hand: words, flags,
// sizes and texts, in the order of the fields. The library decides how to store each of them.

#include <sml/core/kinds.hpp>

#include <gmp.h>
#include <mpfr.h>
#include <cstdio>

#include <cstdint>
#include <streambuf>
#include <string>
#include <utility>

namespace peers {

/// Bytes in memory, read without a copy of all of them.
class InputBytes : public std::streambuf {
public:
    explicit InputBytes(std::string& bytes) {
        setg(bytes.data(), bytes.data(), bytes.data() + bytes.size());
    }
};

/// `Archive` has word(value), flag(bool), size(count) and text(string), which write.
template <class Archive>
class Save {
public:
    explicit Save(Archive& archive) : archive_(archive) {}

    template <class T>
    void operator()(T const& value) {
        using namespace sml::core;
        if constexpr (std::is_enum_v<T>) {
            archive_.word(static_cast<std::int32_t>(value));
        } else if constexpr (Word<T>) {
            archive_.word(value);
        } else if constexpr (std::is_same_v<T, bool>) {
            archive_.flag(value);
        } else if constexpr (std::is_same_v<T, double>) {
            archive_.word(value);
        } else if constexpr (std::is_same_v<T, std::string>) {
            archive_.text(value);
        } else if constexpr (std::is_same_v<T, sml::Strings_T>) {
            archive_.text(value.str());
        } else if constexpr (std::is_same_v<T, sml::BigInteger>) {
            save_integer(value);
        } else if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>) {
            save_float(value);
        } else if constexpr (Optional<T>) {
            archive_.flag(value.has_value());
            if (value) (*this)(*value);
        } else if constexpr (Boxed<T>) {
            (*this)(*value);
        } else if constexpr (List<T> || Set<T> || Map<T>) {
            archive_.size(value.size());
            for (auto const& element : value) (*this)(element);
        } else if constexpr (PairOrTuple<T>) {
            std::apply([this](auto const&... part) { ((*this)(part), ...); }, value);
        } else if constexpr (FlagArray<T>) {
            for (bool const flag : value) archive_.flag(flag);
        } else if constexpr (Fielded<T>) {
            value.with_fields([this](auto const&... field) { ((*this)(field), ...); });
        } else {
            archive_.word(std::int32_t{value.tag});
            value.visit_payload([this](auto const& payload) { (*this)(payload); });
        }
    }

private:
    void save_integer(sml::BigInteger const& value) {
        mpz_srcptr const number = value.backend().data();
        std::string      text(mpz_sizeinbase(number, 16) + 2, '\0');
        mpz_get_str(text.data(), 16, number);
        text.resize(text.find('\0'));
        archive_.text(text);
    }

    void save_float(zelvanite::IEEE754Float const& value) {
        char      text[256];
        int const size = mpfr_snprintf(text, sizeof text, "%Ra", value.number());
        archive_.text(std::string(text, static_cast<std::size_t>(size)));
        archive_.word(value.width);
    }

    Archive& archive_;
};

/// `Archive` has word(value), flag(bool), size(count) and text(string), which read.
template <class Archive>
class Load {
public:
    explicit Load(Archive& archive) : archive_(archive) {}

    template <class T>
    void operator()(T& value) {
        using namespace sml::core;
        if constexpr (std::is_enum_v<T>) {
            std::int32_t word{};
            archive_.word(word);
            value = static_cast<T>(word);
        } else if constexpr (Word<T> || std::is_same_v<T, double>) {
            archive_.word(value);
        } else if constexpr (std::is_same_v<T, bool>) {
            archive_.flag(value);
        } else if constexpr (std::is_same_v<T, std::string>) {
            archive_.text(value);
        } else if constexpr (std::is_same_v<T, sml::Strings_T>) {
            archive_.text(text_);
            value = text_;
        } else if constexpr (std::is_same_v<T, sml::BigInteger>) {
            archive_.text(text_);
            mpz_set_str(value.backend().data(), text_.c_str(), 16);
        } else if constexpr (std::is_same_v<T, zelvanite::IEEE754Float>) {
            load_float(value);
        } else if constexpr (Optional<T>) {
            bool is_present{};
            archive_.flag(is_present);
            value.reset();
            if (is_present) (*this)(value.emplace());
        } else if constexpr (Boxed<T>) {
            (*this)(*value);
        } else if constexpr (List<T>) {
            for (auto left = count(); left > 0; --left) (*this)(value.emplace_back());
        } else if constexpr (Set<T> || Map<T>) {
            load_entries(value);
        } else if constexpr (PairOrTuple<T>) {
            std::apply([this](auto&... part) { ((*this)(part), ...); }, value);
        } else if constexpr (FlagArray<T>) {
            for (bool& flag : value) archive_.flag(flag);
        } else if constexpr (Fielded<T>) {
            value.with_fields([this](auto&... field) { ((*this)(field), ...); });
        } else {
            std::int32_t tag{};
            archive_.word(tag);
            value.choose_tag(tag);
            value.visit_payload([this]<class Payload>(Payload const& payload) {
                (*this)(const_cast<Payload&>(payload));
            });
        }
    }

private:
    std::size_t count() {
        std::size_t size{};
        archive_.size(size);
        return size;
    }

    template <class T>
    void load_entries(T& container) {
        using namespace sml::core;
        auto left = count();
        if constexpr (HashSet<T> || HashMap<T>) container.reserve(left);
        for (; left > 0; --left) {
            if constexpr (Map<T>) {
                typename T::key_type key{};
                (*this)(key);
                (*this)(container.try_emplace(container.end(), std::move(key))->second);
            } else {
                typename T::value_type element{};
                (*this)(element);
                container.emplace_hint(container.end(), std::move(element));
            }
        }
    }

    void load_float(zelvanite::IEEE754Float& value) {
        archive_.text(text_);
        archive_.word(value.width);
        auto const format = zelvanite::IEEE754Float::Format::of(value.width);
        zelvanite::IEEE754Float::set_range(format);
        mpfr_set_prec(value.number(), format.mantissa_bits);
        mpfr_set_str(value.number(), text_.c_str(), 16, MPFR_RNDN);
    }

    Archive&    archive_;
    std::string text_;
};

}  // namespace peers
