// What is wrong with what daemons tell, said once in the log.
#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace binding {

/// A subject is something of a daemon that may be wrong, such as a property. What is wrong about it
/// is said once until it is right again. There are not more subjects than the board asks for, and
/// a daemon that changes to and fro does not fill the log, which holds lines back that it repeats.
class Complaints {
  public:
    /// Logs @p text, which concerns @p subject of the object @p path.
    void Raise(const std::string& subject, const std::string& path, const std::string& text);

    /// @p subject of the object @p path is right. That of another object remains wrong for as long
    /// as @p tree has that one.
    void Settle(const std::string& subject, const std::string& path, const nlohmann::json& tree);

  private:
    struct Complaint {
        bool isOpen = false;
        std::string path;  ///< of the object that is wrong
    };

    std::map<std::string, Complaint> complaints;
};

}  // namespace binding
