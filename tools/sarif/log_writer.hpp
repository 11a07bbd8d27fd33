#pragma once
// Writes SARIF 2.1.0.

#include <sml/inspect/text/json_writer.hpp>
#include "sarif/fitting.hpp"
#include "sarif/log_source.hpp"

#include <ostream>

namespace bradep::sarif {

/// Writes a value as logs have it: an integral number without point and exponent.
void write_value(sml::inspect::JsonWriter& json, json::value const& value);

/// Writes one log, result by result. What `add` has been given no longer needs to exist.
class LogWriter {
public:
    /// The stream must outlive this object.
    explicit LogWriter(std::ostream& out) : out_(out) {}

    /// Adds the runs of a source. Throws Interrupted, and what the source throws.
    void add(LogSource const& source);
    /// Must be called once, at the end.
    void finish();

    /// What of the runs was no SARIF.
    LeftOut const& left_out() const { return left_out_; }

private:
    void add_run(LogSource const& source, std::size_t number);

    std::ostream& out_;
    std::size_t   runs_ = 0;
    LeftOut       left_out_;
};

}  // namespace bradep::sarif
