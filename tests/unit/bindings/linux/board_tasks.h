// Running code of a test on the thread of a board.
#pragma once

#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <mutex>
#include <utility>
#include <vector>

#include "bindings/linux/event.h"
#include "bindings/posix/files/file_io.h"

/// Waits for @p result and serves @p serve meanwhile. After a minute it ends the test program:
/// nothing can be ended in order while a board's thread hangs.
template <typename Result, typename Serve>
Result AwaitOrAbort(std::future<Result> result, Serve serve) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (result.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) {
        if (std::chrono::steady_clock::now() > end) {
            std::fputs("the board's thread hangs\n", stderr);
            std::abort();
        }
        serve();
    }
    return result.get();
}

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
        AwaitOrAbort(done.get_future(), [] {});
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
