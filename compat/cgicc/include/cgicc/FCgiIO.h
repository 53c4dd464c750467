// cgicc::FCgiIO for a cgicc that was installed without it.
#pragma once

#include <cgicc/CgiInput.h>
#include <fcgiapp.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cgicc {

/// Lets cgicc read one FastCGI request: the body from the request's input stream, the variables
/// from its environment, which must stay as it is. The request must outlive the adapter.
class FCgiIO : public CgiInput {
  public:
    explicit FCgiIO(FCGX_Request& fcgiRequest) : request(fcgiRequest) {
        variables.reserve(kUsualVariables);
        for (char** entry = request.envp; entry != nullptr && *entry != nullptr; ++entry) {
            const std::string_view variable(*entry);
            const std::size_t end = variable.find('=');
            if (end != std::string_view::npos) {
                variables.emplace_back(variable.substr(0, end), variable.substr(end + 1));
            }
        }
    }
    ~FCgiIO() override = default;
    FCgiIO(const FCgiIO&) = delete;
    FCgiIO& operator=(const FCgiIO&) = delete;

    /// Reads up to @p length bytes of the body; returns how many there were.
    size_t read(char* data, size_t length) override {
        const int wanted = static_cast<int>(std::min<size_t>(length, INT_MAX));
        return static_cast<size_t>(std::max(FCGX_GetStr(data, wanted, request.in), 0));
    }

    /// Value of a variable, the first if there are several; empty when the request does not have
    /// it.
    std::string getenv(const char* name) override {
        const auto found = std::ranges::find(variables, std::string_view(name), &Variable::first);
        return found == variables.end() ? std::string() : std::string(found->second);
    }

  private:
    /// Name and value. cgicc asks for some thirty names, and the lengths, which tell most of them
    /// apart, are not there in the environment.
    using Variable = std::pair<std::string_view, std::string_view>;

    static constexpr std::size_t kUsualVariables = 40;

    FCGX_Request& request;
    std::vector<Variable> variables;
};

}  // namespace cgicc
