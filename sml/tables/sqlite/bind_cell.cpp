#include <sml/tables/sqlite/bind_cell.hpp>

namespace sml::tables {

void bind_cell(Statement& statement, int parameter, Cell const& cell) {
    if (auto const* const integer = std::get_if<std::int64_t>(&cell))
        return statement.bind(parameter, *integer);
    if (auto const* const number = std::get_if<double>(&cell))
        return statement.bind(parameter, *number);
    auto const* const text = std::get_if<Text>(&cell);
    if (text == nullptr) return statement.bind_null(parameter);
    if (text->lasts) return statement.bind(parameter, text->text);
    statement.bind_copy(parameter, text->text);
}

}  // namespace sml::tables
