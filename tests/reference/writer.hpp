#pragma once
// Writes the wire form, plainly written and with no optimisation.

#include <sml/core/kinds.hpp>

#include <gmp.h>
#include <mpfr.h>
#include <cstdio>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <unordered_map>

namespace plain {

/// Writes values to a stream.
class Writer {
public:
    explicit Writer(std::ostream& stream) : stream_(stream) {}

    template <sml::core::Word T>
    void operator()(T value) {
        stream_.write(reinterpret_cast<char const*>(&value), sizeof value);
    }

    void operator()(bool value) { stream_ << (value ? 'T' : 'F'); }

    void operator()(double value) { (*this)(std::to_string(value)); }

    void operator()(sml::BigInteger const& value) {
        auto const digits = static_cast<std::int32_t>(mpz_sizeinbase(value.backend().data(), 16));
        auto const text = std::make_unique<char[]>(static_cast<std::size_t>(digits) + 3);
        mpz_get_str(text.get(), 16, value.backend().data());
        (*this)(digits + 2);
        stream_.write(text.get(), digits + 2);
    }

    void operator()(zelvanite::IEEE754Float const& value) {
        zelvanite::IEEE754Float::set_range(zelvanite::IEEE754Float::Format::of(value.width));
        char      text[256];
        int const size = mpfr_sprintf(text, "%R*A", MPFR_RNDN, value.number()) & 0xff;
        (*this)(static_cast<std::int32_t>(size));
        stream_.write(text, size);
        (*this)(static_cast<std::int32_t>(value.width));
    }

    void operator()(std::string const& text) {
        (*this)(static_cast<std::int32_t>(text.size()));
        stream_.write(text.data(), static_cast<std::streamsize>(text.size()));
    }

    void operator()(sml::Strings_T const& handle) {
        std::int32_t const count = string_count_;
        auto const [known, inserted] = string_ids_.insert({handle, count + 1});
        if (!inserted) return (*this)(known->second);
        string_count_ = count + 1;
        (*this)(~count);
        (*this)(handle.str());
    }

    template <sml::core::Optional T>
    void operator()(T const& value) {
        (*this)(value.has_value());
        if (value) (*this)(*value);
    }

    template <sml::core::Boxed T>
    void operator()(T const& value) {
        (*this)(*value);
    }

    template <class T>
        requires sml::core::List<T> || sml::core::Set<T> || sml::core::Map<T>
    void operator()(T const& container) {
        (*this)(static_cast<std::int32_t>(container.size()));
        for (auto const& element : container) (*this)(element);
    }

    template <sml::core::PairOrTuple T>
    void operator()(T const& parts) {
        std::apply([this](auto const&... part) { ((*this)(part), ...); }, parts);
    }

    template <sml::core::FlagArray T>
    void operator()(T const& flags) {
        for (bool const flag : flags) (*this)(flag);
    }

    template <sml::core::Fielded T>
    void operator()(T const& record) {
        record.with_fields([this](auto const&... field) { ((*this)(field), ...); });
    }

    template <sml::core::HashedVariant T>
    void operator()(T const& variant) {
        (*this)(std::int32_t{variant.tag});
        variant.visit_payload([this](auto const& payload) { (*this)(payload); });
    }

private:
    std::ostream&                                    stream_;
    std::int32_t                                     string_count_ = 0;
    std::unordered_map<sml::Strings_T, std::int32_t> string_ids_;
};

}  // namespace plain
