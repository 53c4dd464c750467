#include "bindings/posix/files/background_update.h"

#include <exception>
#include <utility>

#include "bindings/posix/files/file_update.h"

namespace binding {

BackgroundUpdate::BackgroundUpdate(std::string newPath, Made newMade)
    : path(std::move(newPath)), made(std::move(newMade)) {}

BackgroundUpdate::~BackgroundUpdate() {
    if (thread.joinable()) {
        thread.join();
    }
}

void BackgroundUpdate::Ask(Change change) {
    {
        const std::scoped_lock lock(mutex);
        changes.push_back(std::move(change));
        if (isBusy) {
            return;
        }
    }
    // The thread before has nothing left to do.
    if (thread.joinable()) {
        thread.join();
    }
    isBusy = true;
    try {
        thread = std::thread([this] { Work(); });
    } catch (const std::exception&) {
        isBusy = false;
        changes.clear();
        throw;
    }
}

void BackgroundUpdate::Work() {
    for (bool isLast = false; !isLast;) {
        Change change;
        {
            const std::scoped_lock lock(mutex);
            change = std::move(changes.front());
            changes.pop_front();
        }
        // Kept as it is, because memory for a text of it may be what is missing.
        std::exception_ptr problem;
        try {
            UpdateFileWithoutLock(path, MissingFile::createdForAll, change);
        } catch (const std::exception&) {
            problem = std::current_exception();
        }
        {
            const std::scoped_lock lock(mutex);
            isLast = changes.empty();
            isBusy = !isLast;
        }
        if (problem == nullptr) {
            made(nullptr);
            continue;
        }
        try {
            std::rethrow_exception(problem);
        } catch (const std::exception& error) {
            made(error.what());
        }
    }
}

}  // namespace binding
