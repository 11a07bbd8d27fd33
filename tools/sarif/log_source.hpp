#pragma once
// Where the runs of a log come from that is written.

#include <boost/json.hpp>

#include <cstddef>
#include <functional>

namespace bradep::sarif {

namespace json = boost::json;

/// Runs as JSON objects in the form of a log. What does not fit SARIF is left out by the writer.
class LogSource {
public:
    using ResultSink = std::function<void(json::object&&)>;

    virtual ~LogSource() = default;

    virtual std::size_t runs() const = 0;
    /// A run without its results.
    virtual json::object run(std::size_t number) const = 0;
    /// Hands over the results of a run one by one, in their order.
    virtual void results(std::size_t run, ResultSink const& sink) const = 0;
};

}  // namespace bradep::sarif
