#include "tools/kestal_record/new_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>

namespace {

[[noreturn]] void Fail(const std::string& path) {
    throw std::runtime_error(path + ": " + std::strerror(errno));
}

[[noreturn]] void Refuse(const std::string& path) {
    throw std::runtime_error(path + ": exists already; --force replaces it");
}

/// A file beside its destination, which has no other name unless it is published.
class TemporaryFile {
  public:
    explicit TemporaryFile(const NewFile& file)
        : destination(file.path),
          name(file.path + ".XXXXXX"),
          descriptor(mkostemp(name.data(), O_CLOEXEC)) {
        if (descriptor < 0) {
            Fail(destination);
        }
    }

    ~TemporaryFile() {
        (void)close(descriptor);
        if (!isPublished) {
            (void)unlink(name.c_str());
        }
    }

    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void Write(const std::string& text) const {
        std::size_t written = 0;
        while (written < text.size()) {
            const ssize_t size = write(descriptor, text.data() + written, text.size() - written);
            if (size < 0 && errno != EINTR) {
                Fail(destination);
            }
            written += static_cast<std::size_t>(std::max<ssize_t>(size, 0));
        }
        // The mode that any new file would have.
        const mode_t mask = umask(0);
        (void)umask(mask);
        constexpr mode_t kMode = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
        if (fchmod(descriptor, kMode & ~mask) != 0 || fsync(descriptor) != 0) {
            Fail(destination);
        }
    }

    void Publish(Existing existing) {
        const unsigned flags = existing == Existing::refused ? RENAME_NOREPLACE : 0;
        int result = renameat2(AT_FDCWD, name.c_str(), AT_FDCWD, destination.c_str(), flags);
        if (result != 0 && errno == EINVAL) {
            // A file system that knows no such flag.
            result = rename(name.c_str(), destination.c_str());
        }
        if (result != 0) {
            errno == EEXIST ? Refuse(destination) : Fail(destination);
        }
        isPublished = true;
    }

    void Withdraw() const { (void)unlink(destination.c_str()); }

  private:
    std::string destination;
    std::string name;
    int descriptor;
    bool isPublished = false;
};

}  // namespace

void MustBeWritable(const std::string& path, Existing existing) {
    namespace fs = std::filesystem;
    if (fs::is_directory(path)) {
        throw std::runtime_error(path + ": is a directory");
    }
    if (existing == Existing::refused && fs::exists(fs::symlink_status(path))) {
        Refuse(path);
    }
    const fs::path folder = fs::path(path).parent_path();
    if (access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) != 0) {
        Fail(path);
    }
}

void WriteFiles(const std::vector<NewFile>& files, Existing existing) {
    std::vector<std::unique_ptr<TemporaryFile>> written;
    for (const NewFile& file : files) {
        written.push_back(std::make_unique<TemporaryFile>(file));
        written.back()->Write(file.text);
    }
    for (std::size_t index = 0; index < written.size(); ++index) {
        try {
            written[index]->Publish(existing);
        } catch (const std::runtime_error&) {
            for (std::size_t before = 0; before < index && existing == Existing::refused;
                 ++before) {
                written[before]->Withdraw();
            }
            throw;
        }
    }
}
