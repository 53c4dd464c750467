// What is written to the web server and read from the request.
#include "platform/cgi_helper.h"

#include <cgicc/CgiEnvironment.h>
#include <cgicc/CgiInput.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <iostream>
#include <map>
#include <memory>
#include <sstream>

namespace {

/// Counts how often it is flushed.
class OutputBuffer : public std::stringbuf {
  public:
    int Flushes() const { return flushes; }

  protected:
    int sync() override {
        ++flushes;
        return 0;
    }

  private:
    int flushes = 0;
};

class Request : public cgicc::CgiInput {
  public:
    Request(std::string newName, std::string newValue)
        : variable(std::move(newName)), value(std::move(newValue)) {}

    std::string getenv(const char* name) override { return name == variable ? value : ""; }

  private:
    std::string variable;
    std::string value;
};

class CgiHelperTest : public ::testing::Test {
  protected:
    CgiHelperTest() : original(std::cout.rdbuf(&output)), helper(CgiHelper::GetInstance()) {}
    ~CgiHelperTest() override { std::cout.rdbuf(original); }

    static cgicc::CgiEnvironment Environment(const std::string& name, const std::string& value) {
        Request request(name, value);
        return cgicc::CgiEnvironment(&request);
    }

    std::string Cookie(const std::string& cookies) const {
        return helper->GetCookie(Environment("HTTP_COOKIE", cookies), "torusess", "none");
    }

    OutputBuffer output;
    std::streambuf* original;
    std::unique_ptr<CgiHelper> helper;
};

TEST_F(CgiHelperTest, IsOneObjectUntilItIsDeleted) {
    ASSERT_NE(helper, nullptr);
    EXPECT_EQ(CgiHelper::GetInstance(), helper.get());
    helper->SetHeader("Content-Type", "text/plain");
    helper.reset();
    helper.reset(CgiHelper::GetInstance());
    ASSERT_NE(helper, nullptr);
    helper->SendResponse(200, "");
    EXPECT_EQ(output.str(), "Status: 200 OK\r\n\r\n") << "the new object has no headers";
}

TEST_F(CgiHelperTest, SendsStatusHeadersAndBody) {
    helper->SetHeader("Content-Type", "application/json");
    helper->SendResponse(200, "{\"a\": 1}");
    EXPECT_EQ(output.str(), "Status: 200 OK\r\nContent-Type: application/json\r\n\r\n{\"a\": 1}");
    EXPECT_EQ(output.Flushes(), 0);
}

TEST_F(CgiHelperTest, HeadersKeepTheirOrderAndAreSetOnce) {
    helper->SetHeader("Z", "1");
    helper->SetHeader("A", "2");
    helper->SetHeader("Z", "3");
    helper->SendResponse(501, "x");
    EXPECT_EQ(output.str(), "Status: 501 Not Implemented\r\nZ: 3\r\nA: 2\r\n\r\nx");
}

TEST_F(CgiHelperTest, StatusHasAReasonWhereThereIsOne) {
    helper->SendResponse(500, "");
    helper->SendResponse(599, "");
    EXPECT_EQ(output.str(), "Status: 500 Internal Server Error\r\n\r\nStatus: 599\r\n\r\n");
}

TEST_F(CgiHelperTest, BodyMayHoldAnything) {
    const std::string body("a\0b\xff\r\n", 6);
    helper->SendResponse(200, body);
    EXPECT_EQ(output.str(), "Status: 200 OK\r\n\r\n" + body);
}

TEST_F(CgiHelperTest, AddressIsThatOfTheCaller) {
    EXPECT_EQ(helper->GetIp(Environment("REMOTE_ADDR", "10.0.0.1")), "10.0.0.1");
    EXPECT_EQ(helper->GetIp(Environment("REMOTE_HOST", "10.0.0.1")), "");
}

TEST_F(CgiHelperTest, CookieIsTheFirstOfItsName) {
    EXPECT_EQ(Cookie("torusess=abc"), "abc");
    EXPECT_EQ(Cookie("a=1; torusess=abc; b=2"), "abc");
    EXPECT_EQ(Cookie("torusess=first; torusess=second"), "first");
    EXPECT_EQ(Cookie("torusess="), "");
}

TEST_F(CgiHelperTest, CookieIsTheDefaultWhenThereIsNone) {
    EXPECT_EQ(Cookie(""), "none");
    EXPECT_EQ(Cookie("a=1"), "none");
    EXPECT_EQ(Cookie("xtorusess=1; Torusess=2; torusess"), "none");
    EXPECT_EQ(Cookie(";;;=;==;"), "none");
}

TEST_F(CgiHelperTest, CookiesMayBeLongOrBinary) {
    const std::string value(65536, 'x');
    EXPECT_EQ(Cookie("torusess=" + value), value);
    EXPECT_EQ(Cookie("torusess=\x01\xff\xfe"), "\x01\xff\xfe");
}

TEST(IpAddressFamily, IsThatOfAnAddress) {
    const std::map<std::string, int> families = {{"127.0.0.1", AF_INET},
                                                 {"255.255.255.255", AF_INET},
                                                 {"::1", AF_INET6},
                                                 {"fe80::1", AF_INET6},
                                                 {"::ffff:10.0.0.1", AF_INET6}};
    for (const auto& [text, expected] : families) {
        int family = 0;
        EXPECT_EQ(GetIPAddressFamily(text, &family), 0) << text;
        EXPECT_EQ(family, expected) << text;
    }
}

TEST(IpAddressFamily, IsUnknownForEverythingElse) {
    for (const std::string& text :
         {std::string(), std::string("localhost"), std::string("1.2.3"), std::string("1.2.3.4 "),
          std::string("256.1.1.1"), std::string("fe80::1%eth0"), std::string(":::"),
          std::string("127.0.0.1\0x", 11)}) {
        int family = 99;
        EXPECT_NE(GetIPAddressFamily(text, &family), 0) << text;
        EXPECT_EQ(family, 99) << text;
    }
}

}  // namespace
