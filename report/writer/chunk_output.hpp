#pragma once
// Where the chunks of a report go.

#include <string>
#include <string_view>

namespace bradep::report {

class ChunkOutput {
public:
    virtual ~ChunkOutput() = default;

    /// Takes a chunk, as `Packer` packs it. Throws if it can't be written.
    virtual void add(std::string const& name, std::string_view packed) = 0;
};

}  // namespace bradep::report
