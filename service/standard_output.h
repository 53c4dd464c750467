#pragma once

#include <fcgio.h>

#include <iostream>

/// As long as this object lives, what is written to std::cout goes to the output stream of a
/// request.
class StandardOutputTo {
  public:
    explicit StandardOutputTo(FCGX_Stream* stream)
        : buffer(stream), previous(std::cout.rdbuf(&buffer)) {}
    ~StandardOutputTo() { std::cout.rdbuf(previous); }
    StandardOutputTo(const StandardOutputTo&) = delete;
    StandardOutputTo& operator=(const StandardOutputTo&) = delete;

  private:
    fcgi_streambuf buffer;
    std::streambuf* previous;
};
