// A folder of files like those below /sys, for one test.
#pragma once

#include <filesystem>
#include <string>

class Folder {
  public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    /// Writes the file @p name, and makes the folders on the way to it.
    void Write(const std::string& name, const std::string& contents) const;

    const std::filesystem::path& Path() const { return path; }

  private:
    std::filesystem::path path;
};
