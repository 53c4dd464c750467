// What gpsd reports: a JSON object a line.
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace binding {

/// The receivers that gpsd reads, and what each last said.
class GpsReceivers {
  public:
    /// Reads one line. Returns whether it changed the status.
    bool Read(std::string_view line);

    /// sys_gps_status_e: off without a receiver.
    int Status() const;

  private:
    void ReadReport(std::string_view line);

    /// Modes by the path of the receiver's device: 2 and 3 are a position in the plane and in
    /// space, less is none.
    std::map<std::string, int, std::less<>> modes;
};

}  // namespace binding
