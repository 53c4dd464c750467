// What gpsd reports: a JSON object a line.
#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace binding {

/// What is wrong with what gpsd has told last.
struct GpsFlaws {
    bool line = false;  ///< the line is no JSON object
    bool mode = false;  ///< the position has no mode, or one that is no number
};

/// The receivers that gpsd reads, and what each last said.
class GpsReceivers {
  public:
    /// Reads one line. Returns whether it changed the status.
    bool Read(std::string_view line);

    /// Forgets all receivers and what was wrong, because the connection is a new one.
    void Restart() { *this = GpsReceivers(); }

    const GpsFlaws& Flaws() const { return flaws; }

    /// sys_gps_status_e: off without a receiver.
    int Status() const;

  private:
    void ReadReport(std::string_view line);
    void ReadPosition(const nlohmann::json& report);

    /// Modes by the path of the receiver's device: 2 and 3 are a position in the plane and in
    /// space, less is none.
    std::map<std::string, int, std::less<>> modes;
    GpsFlaws flaws;
};

}  // namespace binding
