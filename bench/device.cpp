#include "bench/device.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "platform/notification.h"
#include "platform/sysint.h"

namespace bench {

namespace {

std::string DefaultDocument() {
    std::ifstream file(KESTAL_BENCH_DEVICE);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string DocumentWith(int notifications) {
    auto document = nlohmann::json::parse(DefaultDocument());
    auto list = nlohmann::json::array();
    for (int i = 0; i < notifications; ++i) {
        list.push_back({{"id", "smsReceived"},
                        {"category", "messaging"},
                        {"severity", "info"},
                        {"labelId", "notification_category_messaging_label"},
                        {"titleId", "notification_sms_received_title"},
                        {"textId", "notification_sms_received_text"}});
    }
    document["msgbus"][ANS_NOTIFICATION_CHANNEL] = list;
    return document.dump();
}

}  // namespace

DeviceInSession::DeviceInSession() : DeviceInSession(DefaultDocument()) {}

DeviceInSession::DeviceInSession(int notifications)
    : DeviceInSession(DocumentWith(notifications)) {}

DeviceInSession::DeviceInSession(const std::string& document)
    : folder(std::filesystem::temp_directory_path() / "kestal-bench.XXXXXX") {
    if (mkdtemp(folder.data()) == nullptr) {
        throw std::runtime_error("no folder for the device: " + folder);
    }
    const std::string path = folder + "/device.json";
    std::ofstream(path) << document;
    setenv("KESTAL_DEVICE", path.c_str(), 1);
    if (sys_sdkInitialize() != SYS_SUCCESS) {
        throw std::runtime_error("the device does not work: " + path);
    }
}

DeviceInSession::~DeviceInSession() {
    sys_sdkShutdown();
    std::filesystem::remove_all(folder);
}

}  // namespace bench
