#pragma once
// The wire form. Each of its rules stands in exactly one function here.

#include "core/archives.hpp"
#include "core/kinds.hpp"
#include "core/text_blocks.hpp"

namespace sml::core {

constexpr char flag_true = 'T';
constexpr char flag_false = 'F';

/// Writes values to one archive.
template <class Archive>
class Writer {
public:
    explicit Writer(Archive& archive) : archive_(archive) {}

    template <class T>
    void operator()(T const& value) {
        if constexpr (WireForm<T>::exists) write(value);
    }

private:
    template <Word T>
    void write(T value) {
        archive_.put(&value, sizeof value);
    }

    void write(bool value) { archive_.put_flag(value ? flag_true : flag_false); }
    void write(double value) { write(text_of(value)); }
    void write(BigInteger const& value) { write(text_of(value)); }

    void write(zelvanite::IEEE754Float const& value) {
        FloatText const text(value);
        put_block(text.data(), text.size());
        write(static_cast<std::int32_t>(value.width));
    }

    void write(std::string const& text) { put_block(text.data(), text.size()); }

    void write(Strings_T const& handle) {
        std::int32_t const count = archive_.string_count;
        auto const [known, inserted] = archive_.string_ids.try_emplace(handle, count + 1);
        if (!inserted) return write(known->second);
        archive_.string_count = count + 1;
        write(~count);
        write(handle.str());
    }

    template <Optional T>
    void write(T const& value) {
        write(value.has_value());
        if (value) (*this)(*value);
    }

    template <Boxed T>
    void write(T const& value) {
        (*this)(*value);
    }

    template <class T>
        requires List<T> || Set<T> || Map<T>
    void write(T const& container) {
        write(static_cast<std::int32_t>(container.size()));
        for (auto const& element : container) (*this)(element);
    }

    template <PairOrTuple T>
    void write(T const& parts) {
        std::apply([this](auto const&... part) { ((*this)(part), ...); }, parts);
    }

    template <FlagArray T>
    void write(T const& flags) {
        for (bool const flag : flags) write(flag);
    }

    template <class T>
        requires Fielded<T> &&(!Serialized<T>)void write(T const& parts) {
            parts.with_fields([this](auto const&... field) { ((*this)(field), ...); });
        }

        // One `serialize` serves both directions; a writing archive leaves the object as it is.
        template <Serialized T>
        void write(T const& value) {
            const_cast<T&>(value).serialize(archive_, 0);
        }

        // The size goes out as its low 32 bits.
        void put_block(char const* bytes, std::size_t size) {
            write(static_cast<std::int32_t>(size));
            archive_.put(bytes, size);
        }

        Archive& archive_;
};

/// Reads values from one archive. Containers are added to, never cleared first.
template <class Archive>
class Reader {
public:
    explicit Reader(Archive& archive) : archive_(archive) {}

    template <class T>
    void operator()(T& value) {
        if constexpr (WireForm<T>::exists) read(value);
    }

private:
    template <Word T>
    void read(T& value) {
        value = archive_.template get_word<T>();
    }

    // Required: every byte but 'T' is false.
    void read(bool& value) { value = archive_.get_flag() == flag_true; }

    void read(double& value) { value = double_of(get_block()); }
    void read(BigInteger& value) { parse(get_block(), value); }

    // The width stands behind the text but decides how it is parsed.
    void read(zelvanite::IEEE754Float& value) {
        TextBlock const text = get_block();
        auto const      width = archive_.template get_word<std::int32_t>();
        value.width = static_cast<std::uint64_t>(static_cast<std::int64_t>(width));
        parse(text, value);
    }

    // A negative length becomes a huge size; `assign` throws the required length error.
    void read(std::string& text) {
        auto const length = archive_.template get_word<std::int32_t>();
        text.assign(static_cast<std::size_t>(static_cast<std::int64_t>(length)), ' ');
        archive_.get(text.data(), length);
    }

    // Required: 0 and below are first sights, and an undefined id becomes a null handle.
    void read(Strings_T& handle) {
        auto const word = archive_.template get_word<std::int32_t>();
        if (word >= 1) {
            handle = archive_.strings_by_id[word];
            return;
        }
        std::string text;
        read(text);
        handle = text;
        auto const id = static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(word));
        archive_.strings_by_id.try_emplace(id, handle);
    }

    template <Optional T>
    void read(T& value) {
        bool present{};
        read(present);
        value.reset();
        if (present) (*this)(value.emplace());
    }

    template <Boxed T>
    void read(T& value) {
        (*this)(*value);
    }

    // Required: the count is unsigned and the loop runs that often.
    template <class Use>
    void repeat(Use&& read_element) {
        for (auto left = archive_.template get_word<std::uint32_t>(); left != 0; --left)
            read_element();
    }

    // Each element is read in its own node and joins the list when it is complete.
    template <List T>
    void read(T& list) {
        repeat([&] {
            T element(1);
            (*this)(element.front());
            list.splice(list.end(), element);
        });
    }

    template <Set T>
    void read(T& set) {
        repeat([&] {
            typename T::value_type element{};
            (*this)(element);
            set.insert(std::move(element));
        });
    }

    // Required: the first entry for a key stays, a later one is read and dropped, and one whose
    // reading throws is not left behind.
    template <Map T>
        requires(!last_wins<T>)
    void read(T& map) {
        repeat([&] {
            typename T::key_type key{};
            (*this)(key);
            auto const [entry, inserted] = map.try_emplace(std::move(key));
            if (!inserted) return drop<typename T::mapped_type>();
            try {
                (*this)(entry->second);
            } catch (...) {
                map.erase(entry);
                throw;
            }
        });
    }

    template <class T>
    void drop() {
        T value{};
        (*this)(value);
    }

    // Required: the first key object for a key stays, the value is read over the one held.
    template <Map T>
        requires last_wins<T>
    void read(T& map) {
        repeat([&] {
            typename T::key_type key{};
            (*this)(key);
            (*this)(map.try_emplace(std::move(key)).first->second);
        });
    }

    template <PairOrTuple T>
    void read(T& parts) {
        std::apply([this](auto&... part) { ((*this)(part), ...); }, parts);
    }

    template <FlagArray T>
    void read(T& flags) {
        for (bool& flag : flags) read(flag);
    }

    template <class T>
        requires Fielded<T> &&(!Serialized<T>)void read(T& parts) {
            parts.with_fields([this](auto&... field) { ((*this)(field), ...); });
        }

        template <Serialized T>
        void read(T& value) {
            value.serialize(archive_, 0);
        }

        TextBlock get_block() {
            auto const length = archive_.template get_word<std::int32_t>();
            TextBlock  text = make_block(length);
            archive_.get(text.get(), length);
            return text;
        }

        Archive& archive_;
};

/// Writes or reads `value`, as the archive does.
template <class Archive, class T>
void transfer(Archive& archive, T& value) {
    if constexpr (Archive::writes)
        Writer<Archive>{archive}(value);
    else
        Reader<Archive>{archive}(value);
}

/// Writes or reads all fields of a record in wire order.
template <class Archive, class T>
void transfer_fields(Archive& archive, T& record) {
    record.with_fields([&](auto&... field) { (transfer(archive, field), ...); });
}

}  // namespace sml::core
