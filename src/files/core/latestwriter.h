// A file rewritten after every finish, written on a thread of its own: the finish key never
// waits for the disk. Only the newest contents matter, so contents still waiting when newer
// ones come are dropped: a slow disk writes fewer versions, never an older one last.
#pragma once

#include "files/core/exports.h"

#include <QObject>

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

class LatestWriter : public QObject
{
    Q_OBJECT

public:
    LatestWriter();
    // Writes what is still waiting before it goes.
    ~LatestWriter() override;

    // The file to be written as soon as the thread is free, in place of any still waiting.
    void submit(const exports::File& file);
    // Returns once everything submitted has been written.
    void waitIdle();

signals:
    // After each write, from the writing thread: the outcome, its message empty on success.
    void written(const QString& message);

private:
    void run();
    std::mutex mutex;
    std::condition_variable wake;
    std::condition_variable idle;
    std::optional<exports::File> waiting;
    bool busy = false;
    bool stopping = false;
    std::thread thread;
};
