// The simulated device of a benchmark.
#pragma once

#include <string>

namespace bench {

/// A device document in a file of its own. While the object lives, a session of the SDK is open on
/// the document, as it is during one request.
class DeviceInSession {
  public:
    /// The default device.
    DeviceInSession();
    /// The default device with @p notifications active notifications.
    explicit DeviceInSession(int notifications);
    ~DeviceInSession();
    DeviceInSession(const DeviceInSession&) = delete;
    DeviceInSession& operator=(const DeviceInSession&) = delete;

  private:
    explicit DeviceInSession(const std::string& document);

    std::string folder;
};

}  // namespace bench
