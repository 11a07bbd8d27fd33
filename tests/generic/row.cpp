#include "tests/generic/row.hpp"

#include <sstream>
#include <stdexcept>

namespace generic {

std::vector<Row> location_rows();
std::vector<Row> check_rows();
std::vector<Row> info_rows();
std::vector<Row> event_rows();
std::vector<Row> il_rows();
std::vector<Row> question_rows();
std::vector<Row> result_rows();

std::vector<Row> const& all_rows() {
    static std::vector<Row> const rows = [] {
        std::vector<Row> all;
        for (auto* area : {location_rows, check_rows, info_rows, event_rows, il_rows, question_rows,
                           result_rows})
            for (Row const& row : area()) all.push_back(row);
        return all;
    }();
    return rows;
}

Row const& row_named(std::string_view name) {
    for (Row const& row : all_rows())
        if (row.name == name) return row;
    throw std::out_of_range("no type has this name");
}

std::string Value::bytes() const {
    std::string         bytes;
    sml::StringOArchive archive(bytes);
    row_->write(object_, archive);
    archive.finish();
    return bytes;
}

std::string Value::stream_bytes() const {
    std::ostringstream  stream;
    sml::StreamOArchive archive(stream);
    row_->write_to_stream(object_, archive);
    archive.finish();
    return stream.str();
}

std::size_t Value::read(std::string const& bytes) {
    // A block of the exact size, so that a sanitizer reports a read beyond it.
    std::vector<char> const block(bytes.begin(), bytes.end());
    sml::StringIArchive     archive(block.data());
    row_->read(object_, archive);
    return static_cast<std::size_t>(archive.cursor() - block.data());
}

std::size_t Value::read_from_stream(std::string const& bytes) {
    std::istringstream  stream(bytes + "more");
    sml::StreamIArchive archive(stream);
    row_->read_from_stream(object_, archive);
    archive.finish();
    return static_cast<std::size_t>(stream.tellg());
}

}  // namespace generic
