#include "bindings/linux/bus/complaints.h"

#include <nlohmann/json.hpp>

#include "bindings/linux/log.h"

namespace binding {

void Complaints::Raise(const std::string& subject, const std::string& path,
                       const std::string& text) {
    Complaint& complaint = complaints[subject];
    if (complaint.isOpen) {
        return;
    }
    complaint = {true, path};
    LINUX_LOG(TORU_DBG_ERROR, "%s", text.c_str());
}

void Complaints::Settle(const std::string& subject, const std::string& path,
                        const nlohmann::json& tree) {
    const auto found = complaints.find(subject);
    if (found == complaints.end() || !found->second.isOpen) {
        return;
    }
    Complaint& complaint = found->second;
    if (complaint.path == path || !tree.contains(complaint.path)) {
        complaint.isOpen = false;
    }
}

}  // namespace binding
