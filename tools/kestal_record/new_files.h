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

/// Throws std::runtime_error if the file @p path could not be written now.
void MustBeWritable(const std::string& path, Existing existing);

/// Writes all of @p files: under other names first, so that nobody sees half of one. Throws
/// std::runtime_error; then there is none of them that was not there before.
void WriteFiles(const std::vector<NewFile>& files, Existing existing);
