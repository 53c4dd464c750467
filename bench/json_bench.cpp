// The answer tree and its JSON, compared with other libraries on the same keys.
#include <benchmark/benchmark.h>
#include <jansson.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "bench/allocations.h"
#include "bench/device.h"
#include "components/systemservice/service_api.h"
#include "components/systemservice/system_service_component.h"

namespace {

struct Member {
    std::string key;
    bool isText;
    std::string text;
    INT_64 number;
};

/// The members of the status data set, in an order that favours no library.
std::vector<Member> StatusMembers() {
    const bench::DeviceInSession device;
    SystemServiceComponent component;
    CTPP::CDT answer;
    component.Dispatch(answer, SERVICE_API_STATUS);
    const CTPP::CDT& data = answer["statusData"];
    std::vector<Member> members;
    for (auto member = data.Begin(); member != data.End(); ++member) {
        const bool isText = member->second.GetType() == CTPP::CDT::STRING_VAL;
        members.push_back({member->first, isText, member->second.GetString(),
                           isText ? 0 : member->second.GetInt()});
    }
    for (std::size_t i = 0; i < members.size(); ++i) {
        std::swap(members[i], members[i * 37 % members.size()]);
    }
    return members;
}

void TreeOfStatusKeys(benchmark::State& state) {
    const auto members = StatusMembers();
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        CTPP::CDT answer;
        CTPP::CDT& data = answer["statusData"];
        for (const Member& member : members) {
            if (member.isText) {
                data[member.key.c_str()] = member.text;
            } else {
                data[member.key.c_str()] = member.number;
            }
        }
        std::string json;
        CTPP::CDT2JSON(answer, json);
        benchmark::DoNotOptimize(json);
    }
}
BENCHMARK(TreeOfStatusKeys);

void RapidJsonOfStatusKeys(benchmark::State& state) {
    const auto members = StatusMembers();
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        rapidjson::Document answer(rapidjson::kObjectType);
        auto& allocator = answer.GetAllocator();
        rapidjson::Value data(rapidjson::kObjectType);
        for (const Member& member : members) {
            // The keys are literals, so this library need not copy them.
            const rapidjson::Value::StringRefType key(
                member.key.c_str(), static_cast<rapidjson::SizeType>(member.key.size()));
            if (member.isText) {
                data.AddMember(key, rapidjson::Value(member.text.c_str(), allocator), allocator);
            } else {
                data.AddMember(key, rapidjson::Value(member.number), allocator);
            }
        }
        answer.AddMember("statusData", data, allocator);
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
        answer.Accept(writer);
        const std::string json(buffer.GetString(), buffer.GetSize());
        benchmark::DoNotOptimize(json);
    }
}
BENCHMARK(RapidJsonOfStatusKeys);

void NlohmannJsonOfStatusKeys(benchmark::State& state) {
    const auto members = StatusMembers();
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        nlohmann::json answer;
        nlohmann::json& data = answer["statusData"];
        for (const Member& member : members) {
            if (member.isText) {
                data[member.key] = member.text;
            } else {
                data[member.key] = member.number;
            }
        }
        const std::string json = answer.dump();
        benchmark::DoNotOptimize(json);
    }
}
BENCHMARK(NlohmannJsonOfStatusKeys);

void JanssonOfStatusKeys(benchmark::State& state) {
    const auto members = StatusMembers();
    for (auto _ : state) {
        json_t* data = json_object();
        for (const Member& member : members) {
            json_object_set_new(data, member.key.c_str(),
                                member.isText
                                    ? json_stringn(member.text.c_str(), member.text.size())
                                    : json_integer(member.number));
        }
        json_t* answer = json_object();
        json_object_set_new(answer, "statusData", data);
        char* text = json_dumps(answer, JSON_COMPACT);
        const std::string json(text);
        benchmark::DoNotOptimize(json);
        std::free(text);
        json_decref(answer);
    }
}
BENCHMARK(JanssonOfStatusKeys);

/// Only the serialisation, of a list with the given number of notifications.
void Serialisation(benchmark::State& state) {
    CTPP::CDT list(CTPP::CDT::ARRAY_VAL);
    for (INT_64 i = 0; i < state.range(0); ++i) {
        CTPP::CDT notification;
        notification["id"] = "smsReceived";
        notification["category"] = "messaging";
        notification["severity"] = "info";
        notification["title"] = "New message";
        notification["text"] = "Unread messages: 3. <a href=\"/messages\">View messages.</a>";
        notification["label"] = "Messages";
        list.PushBack(std::move(notification));
    }
    std::size_t bytes = 0;
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        std::string json;
        CTPP::CDT2JSON(list, json);
        bytes += json.size();
        benchmark::DoNotOptimize(json);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}
BENCHMARK(Serialisation)->Arg(1)->Arg(10)->Arg(100)->Arg(1000)->Arg(10000);

}  // namespace
