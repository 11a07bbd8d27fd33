#pragma once
// The types of the schema as an array of rows with functions, and values of any of them.

#include <sml/core/archives.hpp>
#include "tests/generic/node.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <typeindex>
#include <utility>
#include <vector>

namespace generic {

enum class Form { record, variant, reference };

/// The names and offsets of the parts of a record or an arm.
struct FieldList {
    char const*                 owner;
    std::vector<std::string>    names;
    std::vector<std::ptrdiff_t> offsets;
};

/// One type of the schema.
struct Row {
    char const*     name;
    std::type_index type;
    Form            form;
    bool            compared;  ///< has `==` and `<`
    Shape const*    arms;      ///< of a variant or reference

    void* (*make)();
    void* (*copy)(void const* source);
    void* (*move)(void* source);
    void (*assign)(void* target, void const* source);
    void (*move_assign)(void* target, void* source);
    void (*destroy)(void* object);

    void (*fill)(void* object, RandomValues& random);
    void (*fill_arm)(void* variant, std::int32_t tag, RandomValues& random);
    Node (*view)(void const* object);

    bool (*equal)(void const* a, void const* b);
    bool (*less)(void const* a, void const* b);
    char const* (*to_string)(void const* object);

    void (*write)(void const* object, sml::StringOArchive& archive);
    void (*write_to_stream)(void const* object, sml::StreamOArchive& archive);
    void (*read)(void* object, sml::StringIArchive& archive);
    void (*read_from_stream)(void* object, sml::StreamIArchive& archive);

    /// For a record, all its fields; for a variant, the parts of its arms that have no record.
    std::vector<FieldList> (*field_lists)();
    void (*assign_field)(void* target, void const* source, std::size_t field);
};

std::vector<Row> const& all_rows();

/// Throws `std::out_of_range` if no type has the name.
Row const& row_named(std::string_view name);

/// A value of the type of a row.
class Value {
public:
    explicit Value(Row const& row) : row_(&row), object_(row.make()) {}
    Value(Row const& row, RandomValues& random) : Value(row) { row.fill(object_, random); }
    Value(Value const& other) : row_(other.row_), object_(row_->copy(other.object_)) {}
    Value(Value&& other) : row_(other.row_), object_(row_->move(other.object_)) {}
    Value& operator=(Value const& other) {
        row_->assign(object_, other.object_);
        return *this;
    }
    Value& operator=(Value&& other) {
        row_->move_assign(object_, other.object_);
        return *this;
    }
    ~Value() { row_->destroy(object_); }

    /// A variant or reference with this arm and random content.
    static Value on_arm(Row const& row, std::int32_t tag, RandomValues& random) {
        Value value(row);
        row.fill_arm(value.object_, tag, random);
        return value;
    }

    bool operator==(Value const& other) const { return row_->equal(object_, other.object_); }
    bool operator<(Value const& other) const { return row_->less(object_, other.object_); }

    Node        view() const { return row_->view(object_); }
    std::string text() const { return text_of(view()); }
    char const* to_string() const { return row_->to_string(object_); }

    void serialize(sml::StringOArchive& archive, unsigned) { row_->write(object_, archive); }
    void serialize(sml::StringIArchive& archive, unsigned) { row_->read(object_, archive); }

    std::string bytes() const;
    std::string stream_bytes() const;
    /// Reads the bytes over the value and returns how many were read.
    std::size_t read(std::string const& bytes);
    std::size_t read_from_stream(std::string const& bytes);

    void fill(RandomValues& random) { row_->fill(object_, random); }
    void choose(std::int32_t tag) { row_->arms->choose(object_, tag); }
    /// Changes one part at random. Returns false if no part can change.
    bool mutate(RandomValues& random) { return generic::mutate(view(), random); }
    void assign_field(Value const& source, std::size_t field) {
        row_->assign_field(object_, source.object_, field);
    }

private:
    Row const* row_;
    void*      object_;
};

}  // namespace generic
