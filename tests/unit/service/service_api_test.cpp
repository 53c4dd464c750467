#include "components/systemservice/service_api.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bindings/recording/recording.h"
#include "service/process.h"
#include "service/request_loop.h"

namespace {

int ApiOf(const std::string& uri) {
    std::string variable = "REQUEST_URI=" + uri;
    std::vector<char*> environment = {variable.data(), nullptr};
    return get_service_api(environment.data());
}

class ServiceApiTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        gProgramName = "kestal.cgi";
    }
};

TEST_F(ServiceApiTest, NamesSelectTheirOperation) {
    EXPECT_EQ(ApiOf("/srv/notification"), SERVICE_API_NOTIFICATION);
    EXPECT_EQ(ApiOf("/srv/status"), SERVICE_API_STATUS);
    EXPECT_EQ(ApiOf("/srv/connect"), SERVICE_API_CONNECT);
    EXPECT_EQ(ApiOf("/srv/disconnect"), SERVICE_API_DISCONNECT);
    EXPECT_EQ(ApiOf("/srv/passcoderecovery"), SERVICE_API_UNKNOWN);
}

TEST_F(ServiceApiTest, NumbersArePartOfTheInterface) {
    EXPECT_EQ(SERVICE_API_NOTIFICATION, 0);
    EXPECT_EQ(SERVICE_API_STATUS, 1);
    EXPECT_EQ(SERVICE_API_CONNECT, 2);
    EXPECT_EQ(SERVICE_API_DISCONNECT, 3);
    EXPECT_EQ(SERVICE_API_UNKNOWN, 4);
}

TEST_F(ServiceApiTest, NameWithTwoKeysResolvesBySearchOrder) {
    EXPECT_EQ(ApiOf("/srv/statusnotification"), SERVICE_API_NOTIFICATION);
    EXPECT_EQ(ApiOf("/srv/connectstatus"), SERVICE_API_STATUS);
    EXPECT_EQ(ApiOf("/srv/connectdisconnect"), SERVICE_API_DISCONNECT);
}

TEST_F(ServiceApiTest, KeyMayStandAnywhereInTheName) {
    EXPECT_EQ(ApiOf("/srv/v2/status/extra"), SERVICE_API_STATUS);
    EXPECT_EQ(ApiOf("/srv/Status"), SERVICE_API_UNKNOWN);
}

TEST_F(ServiceApiTest, QueryStringIsPartOfTheName) {
    EXPECT_EQ(ApiOf("/srv/status?notification"), SERVICE_API_NOTIFICATION);
    EXPECT_EQ(ApiOf("/srv/?connect"), SERVICE_API_CONNECT);
}

TEST_F(ServiceApiTest, FirstFiveCharactersAreDroppedWhateverTheyAre) {
    EXPECT_EQ(ApiOf("xxxxxstatus"), SERVICE_API_STATUS);
    EXPECT_EQ(ApiOf("/status"), SERVICE_API_UNKNOWN);
    EXPECT_EQ(ApiOf("statusconnect"), SERVICE_API_CONNECT);
}

TEST_F(ServiceApiTest, EmptyNameIsUnknown) {
    EXPECT_EQ(ApiOf("/srv/"), SERVICE_API_UNKNOWN);
}

TEST_F(ServiceApiTest, UriShorterThanThePrefixIsUnknown) {
    EXPECT_EQ(ApiOf(""), SERVICE_API_UNKNOWN);
    EXPECT_EQ(ApiOf("/"), SERVICE_API_UNKNOWN);
    EXPECT_EQ(ApiOf("/srv"), SERVICE_API_UNKNOWN);
}

TEST_F(ServiceApiTest, MissingUriIsUnknownAndLoggedAsEmptyText) {
    std::vector<char*> environment = {nullptr};
    EXPECT_EQ(get_service_api(environment.data()), SERVICE_API_UNKNOWN);
    EXPECT_EQ(recording::TranscriptText(),
              recording::Lines(
                  {recording::Log(7, " - int get_service_api(FCGX_ParamArray) BEGIN"),
                   recording::Log(6,
                                  " - int get_service_api(FCGX_ParamArray) - kestal.cgi "
                                  " request received"),
                   recording::Log(7, " - int get_service_api(FCGX_ParamArray) END returning 4")}));
}

TEST_F(ServiceApiTest, RequestIsLoggedWithProgramNameAndWholeUri) {
    ApiOf("/srv/status?x=1");
    EXPECT_EQ(recording::TranscriptText(),
              recording::Lines(
                  {recording::Log(7, " - int get_service_api(FCGX_ParamArray) BEGIN"),
                   recording::Log(6,
                                  " - int get_service_api(FCGX_ParamArray) - kestal.cgi "
                                  "/srv/status?x=1 request received"),
                   recording::Log(7, " - int get_service_api(FCGX_ParamArray) END returning 1")}));
}

TEST_F(ServiceApiTest, PercentEncodedNamesAreComparedAsWritten) {
    EXPECT_EQ(ApiOf("/srv/%73tatus"), SERVICE_API_UNKNOWN);
    EXPECT_EQ(ApiOf("/srv/\xff\x01status"), SERVICE_API_STATUS);
}

TEST_F(ServiceApiTest, OverlongUriIsSearchedToItsEnd) {
    EXPECT_EQ(ApiOf("/srv/" + std::string(60000, 'a') + "status"), SERVICE_API_STATUS);
}

}  // namespace
