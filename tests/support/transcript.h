// Expected transcripts of the recording binding, written step by step.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "bindings/recording/recording.h"

/// One step of a transcript: a call or a log line, or the two lines of a failure.
struct Step {
    Step(const char* line) : lines{line} {}
    Step(std::string line) : lines{std::move(line)} {}
    Step(std::vector<std::string> newLines) : lines(std::move(newLines)) {}

    std::vector<std::string> lines;
};

/// The steps as recording::TranscriptText() gives them.
inline std::string Steps(std::initializer_list<Step> steps) {
    std::string text;
    for (const Step& step : steps) {
        text += recording::Lines(step.lines);
    }
    return text;
}
