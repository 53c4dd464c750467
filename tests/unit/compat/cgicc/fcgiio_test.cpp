#include <cgicc/FCgiIO.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

/// A request that consists only of its environment variables.
class Environment {
  public:
    explicit Environment(std::vector<std::string> lines) : entries(std::move(lines)) {
        for (std::string& entry : entries) {
            pointers.push_back(entry.data());
        }
        pointers.push_back(nullptr);
        request.envp = pointers.data();
    }

    FCGX_Request request{};

  private:
    std::vector<std::string> entries;
    std::vector<char*> pointers;
};

TEST(FCgiIO, VariablesAreFoundByTheirWholeName) {
    Environment environment({"REMOTE_ADDR=192.168.1.2", "REMOTE=", "HTTP_COOKIE=a=b; c=d"});
    cgicc::FCgiIO input(environment.request);
    EXPECT_EQ(input.getenv("REMOTE_ADDR"), "192.168.1.2");
    EXPECT_EQ(input.getenv("REMOTE"), "");
    EXPECT_EQ(input.getenv("HTTP_COOKIE"), "a=b; c=d");
    EXPECT_EQ(input.getenv("REMOTE_"), "");
    EXPECT_EQ(input.getenv("REMOTE_ADDR="), "");
    EXPECT_EQ(input.getenv(""), "");
}

TEST(FCgiIO, TheFirstOfSeveralVariablesOfOneNameCounts) {
    Environment environment({"A=1", "A=2"});
    cgicc::FCgiIO input(environment.request);
    EXPECT_EQ(input.getenv("A"), "1");
    EXPECT_STREQ(FCGX_GetParam("A", environment.request.envp), "1");
}

TEST(FCgiIO, EntriesThatAreNotVariablesAreIgnored) {
    Environment environment({"", "A", "=B", "C=D"});
    cgicc::FCgiIO input(environment.request);
    EXPECT_EQ(input.getenv("A"), "");
    EXPECT_EQ(input.getenv("B"), "");
    EXPECT_EQ(input.getenv("C"), "D");
}

TEST(FCgiIO, AnEnvironmentMayBeEmptyOrLarge) {
    Environment empty({});
    EXPECT_EQ(cgicc::FCgiIO(empty.request).getenv("A"), "");
    std::vector<std::string> lines;
    for (int i = 0; i < 1000; ++i) {
        lines.push_back("V" + std::to_string(i) + "=" + std::to_string(i * i));
    }
    Environment large(lines);
    cgicc::FCgiIO input(large.request);
    EXPECT_EQ(input.getenv("V0"), "0");
    EXPECT_EQ(input.getenv("V999"), "998001");
    EXPECT_EQ(input.getenv("V1000"), "");
}

}  // namespace
