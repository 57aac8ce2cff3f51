#include "latestwriter.h"

LatestWriter::LatestWriter() : thread([this] { run(); }) {}

LatestWriter::~LatestWriter()
{
    {
        const std::lock_guard lock(mutex);
        stopping = true;
    }
    wake.notify_one();
    thread.join();
}

void LatestWriter::submit(const exports::File& file)
{
    {
        const std::lock_guard lock(mutex);
        waiting = file;
    }
    wake.notify_one();
}

void LatestWriter::waitIdle()
{
    std::unique_lock lock(mutex);
    idle.wait(lock, [this] { return !waiting && !busy; });
}

void LatestWriter::run()
{
    std::unique_lock lock(mutex);
    for (;;) {
        wake.wait(lock, [this] { return waiting || stopping; });
        // Stopping still writes what waits: the last finish's file is not lost on closing.
        if (!waiting)
            return;
        const exports::File file = std::move(*waiting);
        waiting.reset();
        busy = true;
        lock.unlock();
        const exports::WriteResult result = exports::write({file});
        emit written(result.message);
        lock.lock();
        busy = false;
        if (!waiting)
            idle.notify_all();
    }
}
