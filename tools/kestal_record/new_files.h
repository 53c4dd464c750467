// Writing files that appear as a whole or not at all.
#pragma once

#include <string>
#include <vector>

struct NewFile {
    std::string path;
    std::string text;
};

/// What to do about files that exist already.
enum class Existing { refused, replaced };

/// Who may read a file that has not existed before.
enum class Readers { asTheUmaskAllows, ownerOnly };

/// Throws std::runtime_error if the file @p path could not be written now.
void MustBeWritable(const std::string& path, Existing existing);

/// Writes all of @p files: under other names first, so that nobody sees half of one, and a lack of
/// room changes nothing. A file that is replaced keeps its owner, where permitted, and its mode.
/// Throws std::runtime_error; then there are no new files, but of two that were to be replaced, the
/// first may have been.
void WriteFiles(const std::vector<NewFile>& files, Existing existing, Readers readers);
