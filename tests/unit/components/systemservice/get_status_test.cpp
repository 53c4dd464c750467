#include <gtest/gtest.h>

#include <new>

#include "bindings/recording/recording.h"
#include "components/systemservice/service_api.h"
#include "components/systemservice/system_service_component.h"
#include "platform/sysint.h"
#include "platform/webui.h"
#include "tests/support/records.h"

namespace {

TEST(GetStatus, ComponentIsBuiltOnFirstUseOnceAndAskedEveryTimeEvenWhenEverythingFails) {
    SystemServiceComponent service;
    recording::Reset();
    recording::Given("webui_get_common_features").Does([] { throw std::bad_alloc(); });
    CTPP::CDT first;
    EXPECT_EQ(service.GetStatus(first), PAGE_ERROR_NONE);
    EXPECT_EQ(recording::CallCount("sys_getSambaCarrierEnabled"), 1U);
    EXPECT_EQ(recording::CallCount("webui_get_common_features"), 1U);
    EXPECT_EQ(recording::CallCount("webui_get_common_configurations"), 1U);
    EXPECT_EQ(recording::CallCount("webui_get_app_features"), 0U);
    EXPECT_EQ(recording::CallCount("sys_getBatteryStatus"), 1U);
    EXPECT_TRUE(first.Exists("statusData"));

    const std::string signature = " - PageError SystemServiceComponent::GetStatus(CTPP::CDT&)";
    EXPECT_EQ(recording::Transcript().front(), recording::Log(7, signature + " - BEGIN"));
    EXPECT_EQ(recording::Transcript().back(), recording::Log(7, signature + " - END returning 0"));

    // The first Init ran out of memory, so it is repeated. The second one fails for another reason,
    // so the third request does not repeat it.
    recording::Reset();
    CTPP::CDT second;
    EXPECT_EQ(service.GetStatus(second), PAGE_ERROR_NONE);
    EXPECT_EQ(recording::CallCount("sys_getSambaCarrierEnabled"), 0U);
    EXPECT_EQ(recording::CallCount("webui_get_common_features"), 1U);
    EXPECT_EQ(recording::CallCount("webui_get_common_configurations"), 1U);

    SystemServiceComponent another;
    recording::Reset();
    CTPP::CDT third;
    EXPECT_EQ(another.Dispatch(third, SERVICE_API_STATUS), PAGE_ERROR_NONE);
    EXPECT_EQ(recording::CallCount("sys_getSambaCarrierEnabled"), 0U);
    EXPECT_EQ(recording::CallCount("webui_get_common_features"), 0U);
    EXPECT_EQ(recording::CallCount("webui_get_common_configurations"), 0U);
    EXPECT_EQ(recording::CallCount("sys_getBatteryStatus"), 1U);
    EXPECT_TRUE(third.Exists("statusData"));
}

TEST(GetStatus, GidIsReadOnceForAllComponentsOfTheProcess) {
    recording::Reset();
    for (const char* const call :
         {"sys_getCellularServiceStats", "sys_getCellularDataConnectionStats",
          "sys_getRadioEnabled", "sys_getCellularServiceStatus",
          "sys_getCellularDataConnectionStatus", "sys_getSIMCarrierGID"}) {
        recording::Given(call).Returns(SYS_SUCCESS);
    }
    sys_subscriber_info_t subscriber{};
    SetText(subscriber.identity, "310480123456789");
    recording::Given("sys_getSubscriberInfo").Writes(subscriber);
    for (int request = 0; request < 2; ++request) {
        CTPP::CDT out;
        SystemServiceComponent().GetStatus(out);
    }
    EXPECT_EQ(recording::CallCount("sys_getSubscriberInfo"), 2U);
    EXPECT_EQ(recording::CallCount("sys_getSIMCarrierGID"), 1U);
}

}  // namespace
