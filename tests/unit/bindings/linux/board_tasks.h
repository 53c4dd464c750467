// Running code of a test on the thread of a board.
#pragma once

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <functional>
#include <future>
#include <mutex>
#include <utility>
#include <vector>

#include "bindings/linux/event.h"
#include "bindings/posix/files/file_io.h"

/// It must outlive the board.
class BoardTasks {
  public:
    /// Begins to listen; the factory of the board's sources calls it.
    void Join(sd_event* event) {
        wakeUp.WatchDescriptor(event, descriptor.Number(), EPOLLIN,
                               [this](std::uint32_t /*events*/) { RunAll(); });
    }

    /// Runs @p task on the board's thread, and returns when it has run.
    void Run(const std::function<void()>& task) {
        std::promise<void> done;
        {
            const std::scoped_lock lock(mutex);
            tasks.emplace_back([&] {
                task();
                done.set_value();
            });
        }
        (void)eventfd_write(descriptor.Number(), 1);
        done.get_future().wait();
    }

  private:
    void RunAll() {
        eventfd_t count = 0;
        (void)eventfd_read(descriptor.Number(), &count);
        std::vector<std::function<void()>> run;
        {
            const std::scoped_lock lock(mutex);
            run.swap(tasks);
        }
        for (const auto& task : run) {
            task();
        }
    }

    binding::FileDescriptor descriptor{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::mutex mutex;
    std::vector<std::function<void()>> tasks;
    binding::EventSource wakeUp;
};
