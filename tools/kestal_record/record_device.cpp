#include "tools/kestal_record/record_device.h"

#include <nlohmann/json.hpp>

#include "platform/sysint.h"

namespace {

class SdkSession {
  public:
    SdkSession() = default;
    ~SdkSession() { (void)sys_sdkShutdown(); }
    SdkSession(const SdkSession&) = delete;
    SdkSession& operator=(const SdkSession&) = delete;

    int Code() const { return code; }

  private:
    int code = sys_sdkInitialize();
};

}  // namespace

Json RecordDevice(const Questions& questions, Remarks& remarks) {
    // The service makes its calls also if the session cannot be opened.
    const SdkSession session;
    return {{"sys", RecordSys(questions, session.Code())},
            {"webui", RecordWebui(questions, remarks)},
            {"msgbus", RecordMsgbus(questions)}};
}
