#include "bindings/bindings.hpp"

#include "core/transfer.hpp"

namespace sml {

namespace {

// Holds the bytes of the latest `fromCxx` of any root. Built right after the string table and
// destroyed right before it.
__attribute__((init_priority(102))) std::string shared_result;

// What the latest call but one has left, which the next one writes over: its memory is warm. A call
// that fails leaves the latest result as it is.
__attribute__((init_priority(102))) std::string spare_result;

constexpr std::size_t largest_spare = std::size_t{128} << 20;

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
    shared_result.swap(spare_result);
    if (spare_result.capacity() > largest_spare) std::string().swap(spare_result);
    return shared_result;
}

template <class T>
void write_stream(T const& value, std::ostream& stream) {
    StreamOArchive archive(stream);
    core::Writer{archive}.write_with_room(value);
    archive.finish();
}

template <class T>
void read_stream(T& value, std::istream& stream) {
    StreamIArchive archive(stream);
    core::Reader{archive}(value);
    archive.finish();
}

}  // namespace

#define SML_ROOT(Stem, ...)                                                                        \
    void Stem##_toCxx(__VA_ARGS__& value, char const* bytes) { read_bytes(value, bytes); }         \
    void deserializeSmlData(__VA_ARGS__& value, char const* bytes) { Stem##_toCxx(value, bytes); } \
    std::string const& Stem##_fromCxx(__VA_ARGS__ const& value) { return write_bytes(value); }     \
    void               Stem##_toStream(__VA_ARGS__ const& value, std::ostream& stream) {           \
                      write_stream(value, stream);                                                 \
    }                                                                                              \
    void Stem##_fromStream(__VA_ARGS__& value, std::istream& stream) { read_stream(value, stream); }
#include "bindings/roots.def"

}  // namespace sml

extern "C" {

#define SML_ROOT(Stem, ...)                                                                        \
    void Stem##_toCxx(__VA_ARGS__* value, char const* bytes) { sml::Stem##_toCxx(*value, bytes); } \
    char const* Stem##_fromCxx(__VA_ARGS__ const* value) {                                         \
        return sml::Stem##_fromCxx(*value).data();                                                 \
    }
#include "bindings/roots.def"

}  // extern "C"
