#include <sml/bindings/bindings.hpp>

#include <sml/core/transfer.hpp>

#ifndef NDEBUG
#include <atomic>
#include <cstdio>
#include <cstdlib>
#endif

namespace sml {

namespace {

#ifdef NDEBUG

struct InsideCall {
    constexpr explicit InsideCall(char const* /*call*/) noexcept {}
};

#else

constinit std::atomic<char const*> outermost_call = nullptr;  // of the thread that is inside
constinit thread_local std::size_t calls_of_this_thread = 0;  // inside one another

/// Marks that its thread is inside an entry point. Aborts if another thread is inside one, before
/// the two damage the string table or the shared result. A thread that is inside one may enter
/// another, as a stream buffer does that calls the library.
class InsideCall {
public:
    explicit InsideCall(char const* call) {
        if (calls_of_this_thread++ > 0) return;
        char const* other = nullptr;
        if (!outermost_call.compare_exchange_strong(other, call)) refuse(call, other);
    }
    InsideCall(InsideCall const&) = delete;
    InsideCall& operator=(InsideCall const&) = delete;
    ~InsideCall() {
        if (--calls_of_this_thread == 0) outermost_call.store(nullptr);
    }

private:
    [[noreturn]] static void refuse(char const* call, char const* other) {
        std::fprintf(stderr,
                     "bradep_cxx_interface: %s entered while another thread is inside %s; the "
                     "library serves one thread at a time\n",
                     call, other);
        std::abort();
    }
};

#endif

// The bytes of the latest `fromCxx` of any root. Constructed right after the string table and
// destroyed right before it.
__attribute__((init_priority(102))) std::string shared_result;

// The result of the call before the latest one, over which the next call writes: its memory is in
// the caches. So a call that throws leaves the latest result as it is.
__attribute__((init_priority(102))) std::string spare_result;

constexpr std::size_t largest_spare = std::size_t{128} << 20;
constexpr std::size_t smallest_shrunk = std::size_t{1} << 20;

/// Frees memory of a result that is much smaller than an earlier one in the same string.
void shrink(std::string& result) {
    if (result.capacity() > smallest_shrunk && result.capacity() / 4 > result.size())
        result.shrink_to_fit();
}

template <class T>
void read_bytes(T& value, char const* bytes) {
    StringIArchive archive(bytes);
    core::Reader{archive}(value);
}

template <class T>
std::string const& write_bytes(T const& value) {
    StringOArchive archive(spare_result);
    core::Writer{archive}.write_with_room(value);
    archive.finish();
    shrink(spare_result);
    shared_result.swap(spare_result);
    if (spare_result.capacity() > largest_spare) std::string().swap(spare_result);
    return shared_result;
}

}  // namespace

#define SML_ROOT(Stem, ...)                                                                        \
    void Stem##_toCxx(__VA_ARGS__& value, char const* bytes) {                                     \
        [[maybe_unused]] InsideCall const inside("toCxx of " #Stem);                               \
        read_bytes(value, bytes);                                                                  \
    }                                                                                              \
    void deserializeSmlData(__VA_ARGS__& value, char const* bytes) { Stem##_toCxx(value, bytes); } \
    std::string const& Stem##_fromCxx(__VA_ARGS__ const& value) {                                  \
        [[maybe_unused]] InsideCall const inside("fromCxx of " #Stem);                             \
        return write_bytes(value);                                                                 \
    }                                                                                              \
    void Stem##_toStream(__VA_ARGS__ const& value, std::ostream& stream) {                         \
        [[maybe_unused]] InsideCall const inside("toStream of " #Stem);                            \
        core::write_to_stream(value, stream);                                                      \
    }                                                                                              \
    void Stem##_fromStream(__VA_ARGS__& value, std::istream& stream) {                             \
        [[maybe_unused]] InsideCall const inside("fromStream of " #Stem);                          \
        core::read_from_stream(value, stream);                                                     \
    }
#include <sml/bindings/roots.def>

}  // namespace sml

extern "C" {

#define SML_ROOT(Stem, ...)                                                                        \
    void Stem##_toCxx(__VA_ARGS__* value, char const* bytes) { sml::Stem##_toCxx(*value, bytes); } \
    char const* Stem##_fromCxx(__VA_ARGS__ const* value) {                                         \
        return sml::Stem##_fromCxx(*value).data();                                                 \
    }
#include <sml/bindings/roots.def>

}  // extern "C"
