// platform/cgi_helper.h.
#include <cgicc/CgiEnvironment.h>
#include <cgicc/CgiInput.h>
#include <sys/socket.h>

#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>

#include "conformance/object.h"
#include "conformance/sections/sections.h"
#include "platform/cgi_helper.h"

namespace conformance {

namespace {

constexpr const char* kSendResponse = "CgiHelper::SendResponse";

/// The variables of a request without a body.
class Variables : public cgicc::CgiInput {
  public:
    explicit Variables(std::map<std::string, std::string> newValues)
        : values(std::move(newValues)) {}

    std::size_t read(char* /*data*/, std::size_t /*length*/) override { return 0; }

    std::string getenv(const char* name) override {
        const auto found = values.find(name);
        return found == values.end() ? "" : found->second;
    }

  private:
    std::map<std::string, std::string> values;
};

/// Captures what is written to std::cout for the lifetime of the object.
class TakenOutput {
  public:
    TakenOutput() : previous(std::cout.rdbuf(taken.rdbuf())) {}
    ~TakenOutput() { std::cout.rdbuf(previous); }
    TakenOutput(const TakenOutput&) = delete;
    TakenOutput& operator=(const TakenOutput&) = delete;

    std::string Text() const { return taken.str(); }

  private:
    std::ostringstream taken;
    std::streambuf* previous;
};

/// A response, split into its parts. Lines may end with or without a carriage return.
struct Response {
    std::vector<std::string> head;
    bool hasEmptyLine = false;
    std::string body;

    explicit Response(const std::string& text) {
        std::size_t begin = 0;
        while (!hasEmptyLine) {
            const std::size_t end = text.find('\n', begin);
            if (end == std::string::npos) {
                break;
            }
            std::string line = text.substr(begin, end - begin);
            begin = end + 1;
            if (line.ends_with('\r')) {
                line.pop_back();
            }
            hasEmptyLine = line.empty();
            if (!hasEmptyLine) {
                head.push_back(line);
            }
        }
        body = text.substr(begin);
    }

    long Count(const std::string& line) const {
        long found = 0;
        for (const std::string& one : head) {
            found += one == line ? 1 : 0;
        }
        return found;
    }
};

Response Send(Probe& probe, CgiHelper& helper, int status, const std::string& body) {
    std::string text;
    probe.Tell(
        kSendResponse, std::to_string(status) + ", " + Quoted(body),
        [&] {
            const TakenOutput output;
            helper.SendResponse(status, body);
            text = output.Text();
        },
        [&] { return Quoted(text); });
    Report& report = probe.Told();
    Response response(text);
    const std::string line = "Status: " + std::to_string(status);
    if (response.head.empty() ||
        (response.head.front() != line && !response.head.front().starts_with(line + " "))) {
        report.Fail(kSendResponse, "does not begin with the line " + Quoted(line));
    }
    if (!response.hasEmptyLine) {
        report.Fail(kSendResponse, "has no empty line between the headers and the body");
    } else if (response.body != body) {
        report.Fail(kSendResponse, "has not written the body that it was given");
    }
    return response;
}

void SetHeader(Probe& probe, CgiHelper& helper, const std::string& name, const std::string& value) {
    probe.Tell(
        "CgiHelper::SetHeader", name + ", " + value, [&] { helper.SetHeader(name, value); },
        [] { return std::string(); });
}

void ExamineResponses(Probe& probe, CgiHelper& helper) {
    Report& report = probe.Told();
    SetHeader(probe, helper, "Content-Type", "application/json");
    SetHeader(probe, helper, "X-Conformance", "one");
    const Response first = Send(probe, helper, 200, "{\"a\":\"\u00e4\"}");
    SetHeader(probe, helper, "X-Conformance", "two");
    const Response second = Send(probe, helper, 404, std::string("a\0b\r\n\r\nc\n", 9));
    const Response empty = Send(probe, helper, 200, "");
    if (first.Count("X-Conformance: one") != 1) {
        report.Fail("CgiHelper::SetHeader", "the header is not in the next response");
    }
    for (const Response& later : {second, empty}) {
        if (later.Count("Content-Type: application/json") != 1 ||
            later.Count("X-Conformance: two") != 1) {
            report.Fail("CgiHelper::SetHeader", "the header is not in every later response");
        }
        if (later.Count("X-Conformance: one") != 0) {
            report.Fail("CgiHelper::SetHeader", "the value that was replaced is still there");
        }
    }
}

void ExpectText(Probe& probe, const std::string& call, const std::string& arguments,
                const std::string& expected, const std::function<std::string()>& make) {
    std::string text;
    probe.Tell(
        call, arguments, [&] { text = make(); }, [&] { return Quoted(text); });
    if (text != expected) {
        probe.Told().Fail(call, "returns " + Quoted(text) + " in place of " + Quoted(expected));
    }
}

void ExamineRequest(Probe& probe, const CgiHelper& helper) {
    Variables given({{"REMOTE_ADDR", "192.0.2.7"},
                     {"HTTP_COOKIE", "other=0; session=first; session=second; empty="}});
    Variables nothing({});
    const cgicc::CgiEnvironment request(&given);
    const cgicc::CgiEnvironment bare(&nothing);
    constexpr const char* kGetIp = "CgiHelper::GetIp";
    ExpectText(probe, kGetIp, "REMOTE_ADDR=192.0.2.7", "192.0.2.7",
               [&] { return helper.GetIp(request); });
    ExpectText(probe, kGetIp, "no address", "", [&] { return helper.GetIp(bare); });

    const auto cookie = [&](const cgicc::CgiEnvironment& environment, const char* name,
                            const char* expected) {
        ExpectText(probe, "CgiHelper::GetCookie", name, expected,
                   [&] { return helper.GetCookie(environment, name, "none"); });
    };
    cookie(request, "session", "first");
    cookie(request, "empty", "");
    cookie(request, "sess", "none");
    cookie(bare, "session", "none");
}

void ExamineFamily(Probe& probe, const std::string& text, std::optional<int> expected) {
    constexpr const char* kCall = "GetIPAddressFamily";
    constexpr int kPreset = -77;
    int family = kPreset;
    int code = 0;
    probe.Tell(
        kCall, Quoted(text), [&] { code = GetIPAddressFamily(text, &family); },
        [&] { return std::to_string(code) + ", family " + std::to_string(family); });
    if (expected && (code != 0 || family != *expected)) {
        probe.Told().Fail(kCall,
                          Quoted(text) + " is an address of family " + std::to_string(*expected));
    } else if (!expected && code == 0) {
        probe.Told().Fail(kCall, Quoted(text) + " is no address");
    } else if (!expected && family != kPreset) {
        probe.Told().Fail(kCall, "fails, but has written to its result");
    }
}

void ExamineFamilies(Probe& probe) {
    for (const char* const address : {"0.0.0.0", "192.0.2.7", "255.255.255.255"}) {
        ExamineFamily(probe, address, AF_INET);
    }
    for (const char* const address : {"::", "::1", "2001:db8::1:2", "::ffff:192.0.2.7"}) {
        ExamineFamily(probe, address, AF_INET6);
    }
    for (const char* const text : {"", " ", "localhost", "192.0.2", "192.0.2.256", "192.0.2.7 ",
                                   "192.0.2.7:80", "1:2", "[::1]"}) {
        ExamineFamily(probe, text, std::nullopt);
    }
    ExamineFamily(probe, std::string("192.0.2.7\0x", 11), std::nullopt);
}

}  // namespace

void ExamineCgi(Probe& probe, const Options& /*options*/) {
    ExamineFamilies(probe);
    CgiHelper* helper = nullptr;
    const auto get = [&] {
        probe.Tell(
            "CgiHelper::GetInstance", "", [&] { helper = CgiHelper::GetInstance(); },
            [&] { return std::string(helper == nullptr ? "null" : "a writer"); });
        return helper;
    };
    const auto writer = Own(probe, "CgiHelper", get());
    if (writer == nullptr) {
        for (const char* const call :
             {kSendResponse, "CgiHelper::SetHeader", "CgiHelper::GetIp", "CgiHelper::GetCookie"}) {
            probe.Skip(call, "there is no response writer");
        }
        return;
    }
    if (get() != writer.get()) {
        probe.Told().Fail("CgiHelper::GetInstance", "the process has more than one writer");
    }
    ExamineResponses(probe, *writer);
    ExamineRequest(probe, *writer);
}

}  // namespace conformance
