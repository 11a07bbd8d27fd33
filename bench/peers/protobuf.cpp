// Protocol Buffers in its best form: messages in an arena, each text once, in a table made by hand,
// numbers by their limbs.

#include "bench/peers/peer.hpp"

#include "core/kinds.hpp"
#include "graph.pb.h"

#include <gmp.h>
// <cstdio> ahead of <mpfr.h> is what declares the printing functions.
#include <google/protobuf/arena.h>
#include <mpfr.h>
#include <cstdio>

#include <unordered_map>
#include <vector>

namespace peers {

namespace {

struct Saver {
    form::Graph&                                      graph;
    std::unordered_map<sml::Strings_T, std::uint32_t> ids;

    std::uint32_t string(sml::Strings_T const& handle) {
        auto const [known, is_new] =
            ids.try_emplace(handle, static_cast<std::uint32_t>(ids.size()));
        if (is_new) graph.add_strings(handle.str());
        return known->second;
    }
    /// The sign and the limbs.
    static std::string integer(sml::BigInteger const& value) {
        mpz_srcptr const number = value.backend().data();
        std::string      bytes(1, static_cast<char>(mpz_sgn(number)));
        bytes.append(reinterpret_cast<char const*>(mpz_limbs_read(number)),
                     mpz_size(number) * sizeof(mp_limb_t));
        return bytes;
    }
    /// The sign, the exponent and the limbs, or only the sign of a special value and which it is.
    static std::string number(zelvanite::IEEE754Float const& value) {
        mpfr_srcptr const number = value.number();
        std::string       bytes(1, static_cast<char>(MPFR_SIGN(number)));
        if (mpfr_regular_p(number) == 0) {
            bytes += mpfr_nan_p(number) != 0 ? 'n' : mpfr_inf_p(number) != 0 ? 'i' : '0';
            return bytes;
        }
        bytes.append(reinterpret_cast<char const*>(&number->_mpfr_exp), sizeof(mpfr_exp_t));
        auto const limbs = static_cast<std::size_t>((mpfr_get_prec(number) + 63) / 64);
        bytes.append(reinterpret_cast<char const*>(number->_mpfr_d), limbs * sizeof(mp_limb_t));
        return bytes;
    }
};

struct Loader {
    std::vector<sml::Strings_T> strings;

    void        string(std::uint32_t id, sml::Strings_T& handle) { handle = strings[id]; }
    static void integer(std::string const& bytes, sml::BigInteger& value) {
        mpz_ptr const number = value.backend().data();
        mpz_import(number, (bytes.size() - 1) / sizeof(mp_limb_t), -1, sizeof(mp_limb_t), 0, 0,
                   bytes.data() + 1);
        if (bytes[0] < 0) mpz_neg(number, number);
    }
    static void number(std::string const& bytes, std::uint32_t width,
                       zelvanite::IEEE754Float& value) {
        value.width = width;
        auto const format = zelvanite::IEEE754Float::Format::of(width);
        zelvanite::IEEE754Float::set_range(format);
        mpfr_ptr const number = value.number();
        mpfr_set_prec(number, format.mantissa_bits);
        if (bytes.size() == 2) {
            if (bytes[1] == 'i') mpfr_set_inf(number, bytes[0]);
            if (bytes[1] == '0') mpfr_set_zero(number, bytes[0]);
            return;
        }
        number->_mpfr_sign = bytes[0];
        std::memcpy(&number->_mpfr_exp, bytes.data() + 1, sizeof(mpfr_exp_t));
        std::memcpy(number->_mpfr_d, bytes.data() + 1 + sizeof(mpfr_exp_t),
                    bytes.size() - 1 - sizeof(mpfr_exp_t));
    }
};

/// The payload of an arm, which must be in use.
template <std::int32_t Tag, class Variant>
auto& payload(Variant& variant) {
    using Payload = typename std::remove_const_t<Variant>::arms::template payload<Tag>;
    Payload const* found = nullptr;
    variant.visit_payload([&]<class Held>(Held const& held) {
        if constexpr (std::is_same_v<Held, Payload>) found = &held;
    });
    if constexpr (std::is_const_v<Variant>)
        return *found;
    else
        return const_cast<Payload&>(*found);
}

template <class T>
void reserve(T& container, int size) {
    if constexpr (sml::core::HashSet<T> || sml::core::HashMap<T>)
        container.reserve(static_cast<std::size_t>(size));
}

template <class T, class Fill>
void load_element(T& container, Fill const& fill) {
    if constexpr (sml::core::List<T>) {
        fill(container.emplace_back());
    } else if constexpr (sml::core::FlagArray<T>) {
        static_assert(!sml::core::FlagArray<T>, "no root of the benchmark holds one");
    } else {
        typename T::value_type element{};
        fill(element);
        container.emplace_hint(container.end(), std::move(element));
    }
}

template <class T, class FillKey, class FillValue>
void load_entry(T& container, FillKey const& fill_key, FillValue const& fill_value) {
    typename T::key_type    key{};
    typename T::mapped_type value{};
    fill_key(key);
    fill_value(value);
    container.emplace_hint(container.end(), std::move(key), std::move(value));
}

#include "graph_messages.hpp"

std::string bytes;

/// Calls `use` with an empty message in an arena whose memory is that of the call before.
template <class Use>
void with_message(Use const& use) {
    static std::vector<char>       block(std::size_t{1} << 20);
    google::protobuf::ArenaOptions options;
    options.initial_block = block.data();
    options.initial_block_size = block.size();
    std::size_t used = 0;
    {
        google::protobuf::Arena arena(options);
        use(*google::protobuf::Arena::CreateMessage<form::Graph>(&arena));
        used = arena.SpaceAllocated();
    }
    if (used > block.size()) block = std::vector<char>(used + used / 8);
}

}  // namespace

Peer protobuf() {
    return {"protobuf",
            [](Graph const& graph) {
                with_message([&](form::Graph& message) {
                    Saver saver{message, {}};
                    save_root(saver, *message.mutable_root(), graph);
                    message.SerializeToString(&bytes);
                });
                return bytes.size();
            },
            [](Graph& graph) {
                with_message([&](form::Graph& message) {
                    message.ParseFromString(bytes);
                    Loader loader;
                    for (auto const& text : message.strings()) loader.strings.emplace_back(text);
                    load_root(loader, message.root(), graph);
                });
            }};
}

}  // namespace peers
