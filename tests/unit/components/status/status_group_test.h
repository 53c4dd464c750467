#pragma once

#include <gtest/gtest.h>

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

/// A component whose field groups can be called one by one; the transcript begins behind its
/// construction.
class StatusGroupTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        component = std::make_unique<StatusComponent>();
        recording::Reset();
    }

    /// Lets the component load one configuration value, and forgets the calls that it took.
    void Configure(std::string_view name, std::string_view value) {
        const std::string call = "webui_get_common_configurations";
        recording::Given("webui_get_common_features").Returns(WEBUI_SUCCESS);
        recording::Given(call).Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(1);
        recording::Given(call)
            .Returns(WEBUI_SUCCESS)
            .WritesRecords(std::vector<webui_configuration_t>{Configuration(name, value)})
            .Writes(1);
        component->Init("");
        recording::Reset();
    }

    std::unique_ptr<StatusComponent> component;
    CTPP::CDT statusData{CTPP::CDT::HASH_VAL};
};
