#pragma once
// The wire form. Each of its rules is in exactly one function here.

#include <sml/core/archives.hpp>
#include <sml/core/get_numbers.hpp>
#include <sml/core/kinds.hpp>
#include <sml/core/large_tables.hpp>
#include <sml/core/put_numbers.hpp>
#include <sml/core/read_ahead.hpp>
#include <sml/core/text_blocks.hpp>

#include <algorithm>

namespace sml::core {

constexpr char flag_true = 'T';
constexpr char flag_false = 'F';

template <class T>
consteval std::size_t longest_run();

template <class... T>
consteval std::size_t longest_run_of_all(Types<T...>) {
    return (std::size_t{0} + ... + longest_run<std::remove_const_t<T>>());
}

template <class V, std::int32_t... Tag>
consteval std::size_t longest_run_of_arms(std::integer_sequence<std::int32_t, Tag...>) {
    return std::max({longest_run<typename V::arms::template payload<Tag>>()...});
}

/// The most bytes that a value takes between two calls of `make_room`. It is called after each text
/// and around each element of a container and each boxed value.
template <class T>
consteval std::size_t longest_run() {
    if constexpr (std::is_void_v<T> || Boxed<T>)
        return 0;
    else if constexpr (Word<T> || std::is_same_v<T, bool>)
        return sizeof(T);
    else if constexpr (std::is_same_v<T, BigInteger> || std::is_same_v<T, zelvanite::IEEE754Float>)
        return longest_number;
    else if constexpr (std::is_same_v<T, Strings_T>)
        return 8;
    else if constexpr (Leaf<T> || List<T> || Set<T> || Map<T>)
        return 4;
    else if constexpr (Optional<T>)
        return 1 + longest_run<typename T::value_type>();
    else if constexpr (PairOrTuple<T>)
        return longest_run_of_all(decltype(parts_of(std::declval<T>())){});
    else if constexpr (FlagArray<T>)
        return std::tuple_size_v<T>;
    else if constexpr (Fielded<T>)
        return longest_run_of_all(FieldTypes<T>{});
    else if constexpr (HashedVariant<T>)
        return 4 +
               longest_run_of_arms<T>(std::make_integer_sequence<std::int32_t, T::arms::count>{});
    else
        return 0;  // no wire form
}

/// Writes values to one archive, which must outlive it.
template <class Archive>
class Writer {
public:
    explicit Writer(Archive& archive) : archive_(archive) {}

    template <class T>
    void operator()(T const& value) {
        if constexpr (WireForm<T>::exists) write(value);
    }

    /// Writes a root, an element of a container or a boxed value, with room made for it before.
    template <class T>
    void write_with_room(T const& value) {
        static_assert(!WireForm<T>::exists || longest_run<T>() <= room_ahead);
        archive_.make_room();
        (*this)(value);
    }

private:
    template <Word T>
    void write(T value) {
        archive_.put(value);
    }

    void write(bool value) { archive_.put_flag(value ? flag_true : flag_false); }

    void write(double value) {
        std::string const text = text_of(value);
        put_block(text.data(), text.size());
    }

    void write(BigInteger const& value) {
        char* const at = archive_.room.at;
        if (char* const next = put_integer(at, value))
            return archive_.have_put(at + sizeof(std::int32_t), next);
        std::string const text = text_of(value);
        put_block(text.data(), text.size());
    }

    void write(zelvanite::IEEE754Float const& value) {
        archive_.float_range.touch(value.width);
        if (char* const next = put_float(archive_.room.at, value, archive_.point))
            return archive_.have_put(next - sizeof(std::int32_t), next);
        FloatText const text(value);
        put_block(text.data(), text.size());
        write(static_cast<std::int32_t>(value.width));
    }

    void write(std::string const& text) { put_block(text.data(), text.size()); }

    void write(Strings_T const& handle) {
        std::int32_t const known = archive_.string_ids.find_or_add(handle);
        if (known != 0) return write(known);
        write(-static_cast<std::int32_t>(archive_.string_ids.size()));
        write(handle.str());
    }

    template <Optional T>
    void write(T const& value) {
        write(value.has_value());
        if (value) (*this)(*value);
    }

    template <Boxed T>
    void write(T const& value) {
        write_with_room(*value);
        archive_.make_room();
    }

    template <class T>
        requires List<T> || Set<T> || Map<T>
    void write(T const& container) {
        write(static_cast<std::int32_t>(container.size()));
        for_each_ahead(container, [this](auto const& element) { this->write_with_room(element); });
        archive_.make_room();
    }

    template <PairOrTuple T>
    void write(T const& parts) {
        std::apply([this](auto const&... part) { ((*this)(part), ...); }, parts);
    }

    template <FlagArray T>
    void write(T const& flags) {
        for (bool const flag : flags) write(flag);
    }

    template <GroupedParts T>
    void write(T const& parts) {
        parts.with_fields([this](auto const&... field) { ((*this)(field), ...); });
    }

    // `serialize` is one function for both directions; a writing archive does not change the
    // object.
    template <Serialized T>
    void write(T const& value) {
        const_cast<T&>(value).serialize(archive_, 0);
    }

    // Required: the length word is the low 32 bits of the size.
    void put_block(char const* bytes, std::size_t size) {
        write(static_cast<std::int32_t>(size));
        archive_.put_long(bytes, size);
    }

    Archive& archive_;
};

/// Reads values from one archive, which must outlive it. It adds to containers and never clears
/// them.
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

    void read(double& value) {
        value = double_of(get_block(archive_.template get_word<std::int32_t>()));
    }
    void read(BigInteger& value) {
        auto const length = archive_.template get_word<std::int32_t>();
        if (char const* const block = archive_.view(length)) {
            if (take_integer(block, static_cast<std::size_t>(length), value))
                return archive_.skip(length);
        }
        parse(get_block(length), value);
    }

    // The width follows the text but decides how it is parsed.
    void read(zelvanite::IEEE754Float& value) {
        constexpr std::int32_t width_size = sizeof(std::int32_t);
        auto const             length = archive_.template get_word<std::int32_t>();
        if (char const* const block = archive_.view(length, width_size)) {
            auto const width_before = value.width;
            set_width(value, core::word_at<std::int32_t>(block + length));
            if (take_float(block, static_cast<std::size_t>(length), value, archive_.point))
                return archive_.skip(length, width_size);
            value.width = width_before;  // `get_block` may throw
        }
        TextBlock const text = get_block(length);
        set_width(value, archive_.template get_word<std::int32_t>());
        parse(text, value);
    }

    static void set_width(zelvanite::IEEE754Float& value, std::int32_t width) {
        value.width = static_cast<std::uint64_t>(static_cast<std::int64_t>(width));
    }

    // Required: a negative length becomes a huge size, for which `assign` throws its length error.
    void read(std::string& text) {
        auto const length = archive_.template get_word<std::int32_t>();
        text.assign(static_cast<std::size_t>(static_cast<std::int64_t>(length)), ' ');
        archive_.get(text.data(), length);
    }

    // Required: a word of 0 or below is a definition, and an id without one gives a null handle.
    void read(Strings_T& handle) {
        auto const word = archive_.template get_word<std::int32_t>();
        if (word >= 1) [[likely]]
            return archive_.strings_by_id.refer(handle, word);
        read_definition(handle, static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(word)));
    }

    [[gnu::noinline]] void read_definition(Strings_T& handle, std::int32_t id) {
        std::string text;
        read(text);
        handle = text;
        archive_.strings_by_id.define(id, handle);
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

    // Required: the count is unsigned, and so many elements are read.
    template <class Use>
    void repeat(Use&& read_element) {
        repeat(archive_.template get_word<std::uint32_t>(), read_element);
    }

    template <class Use>
    static void repeat(std::uint32_t times, Use&& read_element) {
        for (; times != 0; --times) read_element();
    }

    // Each element is read in a node of its own, which is added to the list when it is complete.
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

    // Required: the first entry for a key stays, a later one is read and dropped, and an entry
    // whose reading throws does not stay in the map.
    template <Map T>
        requires(!last_wins<T>)
    void read(T& map) {
        auto const count = archive_.template get_word<std::uint32_t>();
        if constexpr (HashMap<T>)
            if (LargeTable<T>::suits(map, count)) return read_large(map, count);
        repeat(count, [&] {
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

    template <HashMap T>
    [[gnu::noinline]] void read_large(T& map, std::uint32_t count) {
        LargeTable<T> table(map);
        repeat(count, [&] {
            typename T::key_type key{};
            (*this)(key);
            (*this)(table.make(std::move(key)));
            table.keep();
        });
    }

    template <class T>
    void drop() {
        T value{};
        (*this)(value);
    }

    // Required: the first entry for a key stays, and later values are read over its value.
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

    template <GroupedParts T>
    void read(T& parts) {
        parts.with_fields([this](auto&... field) { ((*this)(field), ...); });
    }

    template <Serialized T>
    void read(T& value) {
        value.serialize(archive_, 0);
    }

    TextBlock get_block(std::int32_t length) {
        TextBlock text = make_block(length);
        archive_.get(text.get(), length);
        return text;
    }

    Archive& archive_;
};

/// Writes `value` to the archive, or reads it, by what the archive does.
template <class Archive, class T>
void transfer(Archive& archive, T& value) {
    if constexpr (Archive::writes)
        Writer<Archive>{archive}(value);
    else
        Reader<Archive>{archive}(value);
}

/// Writes or reads all fields of a record, in wire order.
template <class Archive, class T>
void transfer_fields(Archive& archive, T& record) {
    record.with_fields([&](auto&... field) { (transfer(archive, field), ...); });
}

template <class Archive, class T>
void write_with_archive(T const& value, std::ostream& stream) {
    Archive archive(stream);
    Writer<Archive>{archive}.write_with_room(value);
    archive.finish();
}

/// Writes a value. A stream that flushes itself after each item (`unitbuf`), or another stream
/// before it (a tied stream), is required to do so, and is written item by item. Throws what the
/// stream throws.
template <class T>
void write_to_stream(T const& value, std::ostream& stream) {
    bool const flushes_each_item = stream.tie() != nullptr || (stream.flags() & std::ios::unitbuf);
    if (flushes_each_item)
        write_with_archive<UnbufferedOArchive>(value, stream);
    else
        write_with_archive<StreamOArchive>(value, stream);
}

/// Reads a value and leaves the stream after its last byte. Throws what the stream throws, and
/// what reading throws.
template <class T>
void read_from_stream(T& value, std::istream& stream) {
    StreamIArchive archive(stream);
    Reader<StreamIArchive>{archive}(value);
    archive.finish();
}

}  // namespace sml::core
