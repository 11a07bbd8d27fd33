#include <report/writer/chunk_queue.hpp>

#include <report/writer/packed.hpp>

#include <utility>

namespace bradep::report {

ChunkQueue::ChunkQueue(ChunkOutput& output) : output_(output), thread_([this] { pack_all(); }) {}

ChunkQueue::~ChunkQueue() {
    if (!thread_.joinable()) return;
    chunks_.stop();
    thread_.join();
}

void ChunkQueue::add(std::string name, std::string content) {
    if (!chunks_.put({std::move(name), std::move(content)})) std::rethrow_exception(failure_);
}

void ChunkQueue::finish() {
    chunks_.end();
    thread_.join();
    if (failure_) std::rethrow_exception(failure_);
}

void ChunkQueue::pack_all() {
    try {
        Packer packer;
        while (auto const chunk = chunks_.take())
            output_.add(chunk->name, packer.packed(chunk->content));
    } catch (...) {
        failure_ = std::current_exception();
        chunks_.stop();
    }
}

}  // namespace bradep::report
