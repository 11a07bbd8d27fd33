#include <sml/inspect/walk/walk.hpp>

#include <sml/inspect/walk/path.hpp>

#include <algorithm>
#include <vector>

namespace sml::inspect {

namespace {

Limits capped(Limits limits) {
    limits.depth = std::min(limits.depth, Limits::depth_cap);
    return limits;
}

}  // namespace

Walk::Walk(std::string_view bytes, WalkOptions const& options, Budget& given_budget)
    : budget(given_budget),
      strings(bytes, &budget),
      keys(bytes, strings, budget),
      heap(options.limits.memory),
      limits(capped(options.limits)),
      progress(options.progress),
      point_(options.decimal_point),
      start_(bytes.data()),
      end_(start_ + bytes.size()),
      at_(start_) {}

std::string Walk::path() const {
    std::vector<Step const*> steps;
    for (Step const* step = top_; step != nullptr; step = step->up) steps.push_back(step);
    std::string path;
    for (auto step = steps.rbegin(); step != steps.rend(); ++step)
        if ((*step)->part != Step::nowhere || (*step)->flat != nullptr) append_step(path, **step);
    return path;
}

void Walk::append_step(std::string& path, Step const& step) const {
    if (step.flat != nullptr) {
        Type const* type = step.type;
        for (std::size_t i = 0; i < step.flat->way_length; ++i) {
            inspect::append_step(path, *type, step.flat->way[i], {});
            type = type->parts[step.flat->way[i]].type;
        }
    } else if (step.key_offset == Step::nowhere) {
        inspect::append_step(path, *step.type, step.part, {});
    } else {
        inspect::append_step(path, *step.type, step.part,
                             keys.text(*step.type->key, step.key_offset));
    }
}

}  // namespace sml::inspect
