#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bindings/recording/recording.h"
#include "components/status/status_component.h"
#include "platform/webui.h"
#include "tests/support/json.h"
#include "tests/support/records.h"
#include "tests/support/transcript.h"

/// A component whose field groups can be called one by one. The transcript does not contain its
/// construction.
class StatusGroupTest : public testing::Test {
  protected:
    void SetUp() override { Construct({}); }

    /// Makes a new component. The carrier switches that the calls named in @p switches read are on,
    /// the others are off.
    void Construct(const std::vector<std::string>& switches) {
        recording::Reset();
        for (const std::string call : {"sys_getSambaCarrierEnabled", "sys_getGPSCarrierEnabled",
                                       "sys_getMTSMSCarrierEnabled", "sys_getWiFiCarrierEnabled",
                                       "sys_getWiFiGuestCarrierEnabled", "sys_getPCOCarrierEnabled",
                                       "sys_getNUACarrierEnabled", "sys_getOmadmFumoCarrierEnabled",
                                       "sys_getMultiSimEnabled"}) {
            const bool on = std::find(switches.begin(), switches.end(), call) != switches.end();
            recording::Given(call).Writes(on ? 1 : 0);
        }
        component = std::make_unique<StatusComponent>();
        recording::Reset();
    }

    /// Lets the component load one configuration value, and clears the transcript.
    void Configure(std::string_view name, std::string_view value) {
        Configure({Configuration(name, value)});
    }

    /// The same for several values.
    void Configure(const std::vector<webui_configuration_t>& values) {
        const std::string call = "webui_get_common_configurations";
        const int count = static_cast<int>(values.size());
        recording::Given("webui_get_common_features").Returns(WEBUI_SUCCESS);
        recording::Given(call).Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(count);
        recording::Given(call).Returns(WEBUI_SUCCESS).WritesRecords(values).Writes(count);
        component->Init("");
        recording::Reset();
    }

    /// The text or number of a key as text; "(absent)" if the key is not there.
    std::string Value(const std::string& key) const {
        return statusData.Exists(key) ? statusData.GetCDT(key).GetString() : "(absent)";
    }

    std::unique_ptr<StatusComponent> component;
    CTPP::CDT statusData{CTPP::CDT::HASH_VAL};
};
