#include "bindings/posix/files/file_io.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace binding {

namespace {

std::int64_t Nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

// 64 bits on 32-bit processors, too: otherwise stat fails for every file whose inode number or size
// needs more than 32 bits.
static_assert(sizeof(ino_t) == 8 && sizeof(off_t) == 8);

FileStamp StampOf(const struct stat& status) {
    return {.device = status.st_dev,
            .inode = status.st_ino,
            .size = status.st_size,
            .modified = Nanoseconds(status.st_mtim),
            .changed = Nanoseconds(status.st_ctim)};
}

}  // namespace

FileDescriptor::~FileDescriptor() {
    if (number >= 0) {
        (void)close(number);
    }
}

FileStamp StampOf(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? StampOf(status) : FileStamp{.error = errno};
}

std::string ReadFile(const std::string& path, FileStamp& stamp) {
    // Without O_NONBLOCK, opening a pipe would wait for its writer.
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status = {};
    if (file.Number() < 0 || fstat(file.Number(), &status) != 0) {
        ThrowSystemError(path);
    }
    if (!S_ISREG(status.st_mode)) {
        throw std::system_error(std::make_error_code(std::errc::invalid_argument),
                                path + ": not a regular file");
    }
    stamp = StampOf(status);
    std::string contents;
    std::array<char, 16384> piece{};
    while (true) {
        const ssize_t count = read(file.Number(), piece.data(), piece.size());
        if (count == 0) {
            return contents;
        }
        if (count > 0) {
            contents.append(piece.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            ThrowSystemError(path);
        }
        if (contents.size() > kLargestFile) {
            throw std::system_error(std::make_error_code(std::errc::file_too_large), path);
        }
    }
}

void ThrowSystemError(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

}  // namespace binding
