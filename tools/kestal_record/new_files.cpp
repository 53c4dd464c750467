#include "tools/kestal_record/new_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "bindings/posix/files/replacement.h"

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Refuse(const std::string& path) {
    throw std::runtime_error(path + ": exists already; --force replaces it");
}

using Written = std::unique_ptr<binding::Replacement>;

Written Write(const fs::path& target, const std::string& text, Readers readers) {
    struct stat original {};
    const bool exists = stat(target.c_str(), &original) == 0;
    constexpr mode_t kOfAnyFile = 0666;
    constexpr mode_t kPrivate = 0600;
    const bool isPrivate = exists || readers == Readers::ownerOnly;
    auto written =
        std::make_unique<binding::Replacement>(target, isPrivate ? kPrivate : kOfAnyFile);
    written->Write(text);
    if (exists) {
        written->CopyOwnerAndMode(original);
    }
    written->Synchronise();
    return written;
}

}  // namespace

void MustBeWritable(const std::string& path, Existing existing) {
    // A new file would take the place of the device, as the super-user that of /dev/null.
    if (fs::exists(path) && !fs::is_regular_file(path)) {
        throw std::runtime_error(path + ": is not a regular file");
    }
    if (existing == Existing::refused && fs::exists(fs::symlink_status(path))) {
        Refuse(path);
    }
    if (access(binding::TargetOf(path).parent_path().c_str(), W_OK | X_OK) != 0) {
        throw std::runtime_error(path + ": " + std::strerror(errno));
    }
}

void WriteFiles(const std::vector<NewFile>& files, Existing existing, Readers readers) {
    std::vector<fs::path> targets;
    std::vector<Written> all;
    for (const NewFile& file : files) {
        targets.push_back(binding::TargetOf(file.path));
        all.push_back(Write(targets.back(), file.text, readers));
    }
    if (existing == Existing::replaced) {
        for (const Written& written : all) {
            written->ReplaceTarget();
        }
        return;
    }
    for (std::size_t index = 0; index < all.size(); ++index) {
        try {
            all[index]->BecomeTarget();
        } catch (const std::system_error& error) {
            for (std::size_t before = 0; before < index; ++before) {
                (void)unlink(targets[before].c_str());
            }
            if (error.code() == std::errc::file_exists) {
                Refuse(files[index].path);
            }
            throw;
        }
    }
}
