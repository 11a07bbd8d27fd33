#pragma once
// Reads the wire form, plainly written and with no optimisation.

#include <sml/core/kinds.hpp>

#include <gmp.h>
#include <mpfr.h>

#include <cstdint>
#include <cstring>
#include <istream>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <utility>

namespace plain {

/// Bytes in memory, read without a bound.
class Buffer {
public:
    explicit Buffer(char const* bytes) : at_(bytes) {}

    void get(char* target, std::int64_t size) {
        if (size <= 0) return;
        std::memcpy(target, at_, static_cast<std::size_t>(size));
        at_ += size;
    }
    void get_word(char* scratch, std::int64_t size) { get(scratch, size); }
    void get_flag(char& flag) { flag = *at_++; }

    char const* at() const { return at_; }

private:
    char const* at_;
};

/// A caller's stream. Flags are read by its formatted input. A failed read leaves the scratch word
/// unchanged.
class Stream {
public:
    explicit Stream(std::istream& stream) : stream_(stream) {}

    void get(char* target, std::int64_t size) { stream_.read(target, size); }
    void get_word(char* scratch, std::int64_t size) { stream_.read(scratch, size); }
    void get_flag(char& flag) { stream_ >> flag; }

private:
    std::istream& stream_;
};

/// Reads values from a source. Containers keep the elements that they have, and new ones are added.
template <class Source>
class Reader {
public:
    explicit Reader(Source& source) : source_(source) {}

    template <sml::core::Word T>
    void operator()(T& value) {
        source_.get_word(scratch_, sizeof value);
        std::memcpy(&value, scratch_, sizeof value);
    }

    void operator()(bool& value) {
        source_.get_flag(scratch_[0]);
        value = scratch_[0] == 'T';
    }

    void operator()(double& value) {
        char const* const text = get_block();
        if (text == nullptr) throw std::logic_error("basic_string::_M_construct null not valid");
        value = std::stod(block_);
    }

    void operator()(sml::BigInteger& value) {
        mpz_set_str(value.backend().data(), get_block(), 16);
    }

    void operator()(zelvanite::IEEE754Float& value) {
        char const* const text = get_block();
        std::int32_t      width{};
        (*this)(width);
        value.width = static_cast<std::uint64_t>(static_cast<std::int64_t>(width));
        auto const format = zelvanite::IEEE754Float::Format::of(value.width);
        zelvanite::IEEE754Float::set_range(format);
        mpfr_set_prec(value.number(), format.mantissa_bits);
        mpfr_set_str(value.number(), text, 16, MPFR_RNDN);
    }

    void operator()(std::string& text) {
        std::int32_t length{};
        (*this)(length);
        text.assign(static_cast<std::size_t>(static_cast<std::int64_t>(length)), ' ');
        source_.get(text.data(), length);
    }

    void operator()(sml::Strings_T& handle) {
        std::int32_t word{};
        (*this)(word);
        if (word >= 1) {
            handle = strings_by_id_[word];
            return;
        }
        std::string text;
        (*this)(text);
        handle = text;
        strings_by_id_.insert(
            {static_cast<std::int32_t>(-static_cast<std::int64_t>(word)), handle});
    }

    template <sml::core::Optional T>
    void operator()(T& value) {
        bool is_present{};
        (*this)(is_present);
        value.reset();
        if (is_present) (*this)(value.emplace());
    }

    template <sml::core::Boxed T>
    void operator()(T& value) {
        (*this)(*value);
    }

    template <sml::core::List T>
    void operator()(T& list) {
        for (std::uint32_t left = get_count(); left > 0; --left) {
            list.emplace_back();
            read_or_undo(list.back(), [&] { list.pop_back(); });
        }
    }

    template <sml::core::Set T>
    void operator()(T& set) {
        for (std::uint32_t left = get_count(); left > 0; --left) {
            typename T::value_type element{};
            (*this)(element);
            insert([&] { set.insert(std::move(element)); });
        }
    }

    template <sml::core::Map T>
    void operator()(T& map) {
        for (std::uint32_t left = get_count(); left > 0; --left) {
            typename T::key_type key{};
            (*this)(key);
            auto const [entry, is_new] = map.try_emplace(std::move(key));
            if (sml::core::last_wins<T>) {
                (*this)(entry->second);
            } else if (is_new) {
                read_or_undo(entry->second, [&, at = entry] { map.erase(at); });
            } else {
                typename T::mapped_type dropped{};
                (*this)(dropped);
            }
        }
    }

    template <sml::core::PairOrTuple T>
    void operator()(T& parts) {
        std::apply([this](auto&... part) { ((*this)(part), ...); }, parts);
    }

    template <sml::core::FlagArray T>
    void operator()(T& flags) {
        for (bool& flag : flags) (*this)(flag);
    }

    template <sml::core::Fielded T>
    void operator()(T& record) {
        record.with_fields([this](auto&... field) { ((*this)(field), ...); });
    }

    template <sml::core::HashedVariant T>
    void operator()(T& variant) {
        std::int32_t tag{};
        (*this)(tag);
        bool const has_unbuilt_catch_all = tag == -1 && T::arms::has_catch_all;
        if (tag != variant.tag || has_unbuilt_catch_all) variant.choose_tag(tag);
        variant.visit_payload([this]<class Payload>(Payload const& payload) {
            (*this)(const_cast<Payload&>(payload));
        });
    }

private:
    /// Calls `undo` if reading throws.
    template <class T, class Undo>
    void read_or_undo(T& value, Undo&& undo) {
        try {
            (*this)(value);
        } catch (...) {
            undo();
            throw;
        }
    }

    /// Copying a float also sets MPFR's exponent range. The range of the float that was read last
    /// is required to stay, so it is restored after the insertion.
    template <class Insert>
    static void insert(Insert&& do_insert) {
        auto const least = mpfr_get_emin();
        auto const most = mpfr_get_emax();
        do_insert();
        mpfr_set_emin(least);
        mpfr_set_emax(most);
    }

    std::uint32_t get_count() {
        std::uint32_t count{};
        (*this)(count);
        return count;
    }

    /// The bytes of a block and a zero byte after them; null for the length -1.
    char const* get_block() {
        std::int32_t length{};
        (*this)(length);
        if (length == -1) return nullptr;
        if (length < -1) throw std::bad_array_new_length();
        block_.assign(static_cast<std::size_t>(length), '\0');
        source_.get(block_.data(), length);
        return block_.c_str();
    }

    Source&                                          source_;
    char                                             scratch_[8]{};
    std::string                                      block_;
    std::unordered_map<std::int32_t, sml::Strings_T> strings_by_id_;
};

}  // namespace plain
