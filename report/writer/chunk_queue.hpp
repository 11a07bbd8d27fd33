#pragma once
// Packs chunks while the next ones are made.

#include <report/writer/chunk_output.hpp>

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
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

    void                 pack_all();
    std::optional<Chunk> next();

    ChunkOutput&            output_;
    std::mutex              mutex_;
    std::condition_variable changed_;
    std::deque<Chunk>       chunks_;
    bool                    is_complete_ = false;  // no chunks will follow
    std::exception_ptr      failure_;
    std::thread             thread_;  // the last member: it uses the others
};

}  // namespace bradep::report
