#include <report/writer/chunk_queue.hpp>

#include <report/writer/packed.hpp>

#include <cstddef>
#include <utility>

namespace bradep::report {

namespace {

constexpr std::size_t most_waiting = 8;

}  // namespace

ChunkQueue::ChunkQueue(ChunkOutput& output) : output_(output), thread_([this] { pack_all(); }) {}

ChunkQueue::~ChunkQueue() {
    if (!thread_.joinable()) return;
    {
        std::lock_guard const lock(mutex_);
        chunks_.clear();
        is_complete_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void ChunkQueue::add(std::string name, std::string content) {
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return chunks_.size() < most_waiting || failure_; });
        if (failure_) std::rethrow_exception(failure_);
        chunks_.push_back({std::move(name), std::move(content)});
    }
    changed_.notify_all();
}

void ChunkQueue::finish() {
    {
        std::lock_guard const lock(mutex_);
        is_complete_ = true;
    }
    changed_.notify_all();
    thread_.join();
    if (failure_) std::rethrow_exception(failure_);
}

void ChunkQueue::pack_all() {
    try {
        Packer packer;
        while (auto const chunk = next()) output_.add(chunk->name, packer.packed(chunk->content));
    } catch (...) {
        {
            std::lock_guard const lock(mutex_);
            failure_ = std::current_exception();
        }
        changed_.notify_all();
    }
}

std::optional<ChunkQueue::Chunk> ChunkQueue::next() {
    std::optional<Chunk> chunk;
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !chunks_.empty() || is_complete_; });
        if (chunks_.empty()) return std::nullopt;
        chunk.emplace(std::move(chunks_.front()));
        chunks_.pop_front();
    }
    changed_.notify_all();
    return chunk;
}

}  // namespace bradep::report
