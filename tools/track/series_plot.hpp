#pragma once
// A plot of a series of runs as SVG.

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace bradep {

struct PlottedRun {
    std::int64_t  number = 0;
    std::string   name;
    std::uint64_t open = 0, added = 0, returned = 0, fixed = 0;
};

/// Plots open findings over the runs, and below how many are new, returned and fixed in each run
/// but the first of the series. The image needs nothing else and is light or dark as the viewer
/// asks for.
void write_plot(std::ostream& out, std::string const& title, std::vector<PlottedRun> const& runs);

}  // namespace bradep
