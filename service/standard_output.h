#pragma once

#include <fcgio.h>

#include <iostream>

/// Points std::cout at a request's output stream for its own lifetime.
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
