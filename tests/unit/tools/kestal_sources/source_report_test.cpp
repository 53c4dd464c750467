// kestal-sources reads what the service reports, whatever comes.
#include "tools/kestal_sources/source_report.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/support/scratch.h"

namespace {

class SourceReport : public SimulatedDevice {
  protected:
    /// What ReadReport makes of a service that answers @p answer.
    Json Answered(const std::string& answer) {
        const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(path.begin(), path.end(), address.sun_path);
        (void)unlink(path.c_str());
        EXPECT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(listener, 1), 0);
        const std::jthread service([&] {
            const int client = accept(listener, nullptr, nullptr);
            EXPECT_EQ(write(client, answer.data(), answer.size()),
                      static_cast<ssize_t>(answer.size()));
            (void)close(client);
            (void)close(listener);
        });
        return ReadReport(path);
    }

    std::string Complaint(const std::string& answer) {
        try {
            (void)Answered(answer);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }

    const std::string path = directory / "sources";
};

const Json kReport = {
    {{"name", "modem"}, {"state", "present"}, {"since", 1'790'000'000}, {"said", {{"state", 8}}}},
    {{"name", "wifi"}, {"state", "lost"}, {"since", 1'790'000'060}, {"reason", "no answer"}},
    {{"name", "power"}, {"state", "unknown"}, {"since", 0}}};

TEST_F(SourceReport, IsReadAsItIs) {
    EXPECT_EQ(Answered(kReport.dump()), kReport);
}

TEST_F(SourceReport, WhatIsNoReportIsRefused) {
    for (const char* const answer : {"", "{", "{}", "[1]", "null"}) {
        EXPECT_EQ(Complaint(answer), path + ": this is no report on sources") << answer;
    }
}

TEST_F(SourceReport, WithoutAServiceTheComplaintSaysSo) {
    try {
        (void)ReadReport(path);
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), path + ": No such file or directory (does the service run?)");
    }
}

TEST_F(SourceReport, ListHasOneLineForEachSource) {
    environment.Set("TZ", "UTC");
    tzset();
    std::ostringstream out;
    WriteSources(out, kReport);
    EXPECT_EQ(out.str(),
              "modem           present  2026-09-21 14:13:20\n"
              "wifi            lost     2026-09-21 14:14:20  no answer\n"
              "power           unknown  -\n");
}

TEST_F(SourceReport, ListBearsSourcesWithoutMembers) {
    std::ostringstream out;
    WriteSources(out, Json::parse("[{}, {\"name\": 1, \"since\": \"x\", \"state\": []}]"));
    EXPECT_EQ(out.str(),
              "                         -\n"
              "                         -\n");
}

TEST_F(SourceReport, OneSourceIsFoundByItsName) {
    EXPECT_EQ(SourceNamed(kReport, "modem")["said"]["state"], 8);
    try {
        (void)SourceNamed(kReport, "modme");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "there is no source 'modme'; there are: modem wifi power");
    }
}

}  // namespace
