#pragma once

#include <exception>

namespace CTPP {

/// Base of everything that the library throws by itself.
class CTPPException : public std::exception {
  public:
    const char* what() const noexcept override { return "CTPP exception"; }
};

/// The value is not of the kind (array, hash, text) that the operation needs.
class CDTAccessException : public CTPPException {
  public:
    const char* what() const noexcept override { return "operator []"; }
};

/// The index or key is not in the container, or the index is too large for an array.
class CDTRangeException : public CTPPException {
  public:
    const char* what() const noexcept override { return "pos > size"; }
};

/// The value cannot take part in a text operation.
class CDTTypeCastException : public CTPPException {
  public:
    /// `failedOperation` must be a string literal.
    explicit CDTTypeCastException(const char* failedOperation) noexcept
        : operation(failedOperation) {}
    const char* what() const noexcept override { return operation; }

  private:
    const char* operation;
};

}  // namespace CTPP
