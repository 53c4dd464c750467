#include <gtest/gtest.h>

#include <cstdio>
#include <nlohmann/json.hpp>

#include "tests/faults/cases.h"
#include "tests/faults/serving.h"

std::string FaultOfAnswer(const std::string& text, const std::string& member) {
    const nlohmann::json answer = nlohmann::json::parse(text, nullptr, false);
    if (!answer.is_object()) {
        return "not a JSON object: " + text;
    }
    if (!answer.contains("loginStatus") || !answer["loginStatus"].is_number_integer()) {
        return "no login status: " + text;
    }
    if (!member.empty() && !(answer.contains(member) && answer[member].is_structured())) {
        return "no " + member + ": " + text;
    }
    return "";
}

void Print(const char* what, const Report& report) {
    std::printf("[ faults   ] %s: %ld cases, %zu calls%s\n", what, report.cases,
                report.calls.size(), kSampled ? " (a sample)" : "");
    for (const std::string& text : report.texts) {
        ADD_FAILURE() << text;
    }
    EXPECT_EQ(report.problems, 0);
    EXPECT_GT(report.cases, 0);
}
