#pragma once
// Packs chunks while the next ones are made.

#include <report/writer/chunk_output.hpp>
#include <sml/tables/bounded_queue.hpp>

#include <cstddef>
#include <exception>
#include <string>
#include <thread>

namespace bradep::report {

/// A thread of its own packs chunks and gives them to an output, in the order in which they were
/// added. If it fails, the next call throws what it threw.
class ChunkQueue {
public:
    /// The output must outlive this object.
    explicit ChunkQueue(ChunkOutput& output);
    /// Gives up what is not yet packed.
    ~ChunkQueue();
    ChunkQueue(ChunkQueue const&) = delete;
    ChunkQueue& operator=(ChunkQueue const&) = delete;

    /// Waits while many chunks are not packed yet.
    void add(std::string name, std::string content);
    /// Waits until the output has all chunks. Must be called last.
    void finish();

private:
    struct Chunk {
        std::string name;
        std::string content;
    };

    static constexpr std::size_t most_waiting = 8;

    void pack_all();

    ChunkOutput&                     output_;
    sml::tables::BoundedQueue<Chunk> chunks_{most_waiting};
    std::exception_ptr               failure_;  // set before the queue is stopped
    std::thread                      thread_;   // the last member: it uses the others
};

}  // namespace bradep::report
