// Replays cases.jsonl: each line has operations on named trees and the JSON of the tree "root" at
// the end. `results` has what an operation returns or throws, by its number.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "to_json.h"

namespace {

using CTPP::CDT;
using Json = nlohmann::json;

struct Case {
    std::string name;
    Json ops;
    Json results;
    std::string json;
};

void PrintTo(const Case& testCase, std::ostream* out) {
    *out << testCase.name;
}

std::vector<Case> LoadCases() {
    std::ifstream file(KESTAL_CTPP2_CASES);
    std::vector<Case> cases;
    for (std::string line; std::getline(file, line);) {
        const Json entry = Json::parse(line);
        cases.push_back({entry.at("name"), entry.at("ops"), entry.value("results", Json::object()),
                         entry.at("json")});
    }
    return cases;
}

class Interpreter {
  public:
    /// Runs one operation and returns its result as text.
    std::string Run(const Json& op) {
        try {
            return Perform(op.at(0), op);
        } catch (const CTPP::CDTAccessException&) {
            return "throws:CDTAccessException";
        } catch (const CTPP::CDTRangeException&) {
            return "throws:CDTRangeException";
        } catch (const CTPP::CDTTypeCastException&) {
            return "throws:CDTTypeCastException";
        }
    }

    const CDT& Root() { return trees["root"]; }

  private:
    std::string Perform(const std::string& name, const Json& op) {
        if (name == "newvar") {
            trees.emplace(op.at(1).get<std::string>(), Node(op.at(2)));
            return "";
        }
        const Json& path = op.at(1);
        if (name == "set") {
            Store(op, [&](const auto& value) { Node(path) = value; });
        } else if (name == "push") {
            Store(op, [&](const auto& value) { Node(path).PushBack(value); });
        } else if (name == "assign") {
            const CDT& source = Node(op.at(2));
            Node(path) = source;
        } else if (name == "touch") {
            Node(path);
        } else if (name == "cread" || name == "type") {
            return std::to_string(ConstNode(path).GetType());
        } else if (name == "exists") {
            return ToText(ConstNode(path).Exists(op.at(2).get<std::string>()));
        } else if (name == "erase") {
            return ToText(Node(path).Erase(op.at(2).get<std::string>()));
        } else if (name == "getint") {
            return std::to_string(ConstNode(path).GetInt());
        } else if (name == "tostring") {
            return Node(path).ToString();
        } else {
            throw std::invalid_argument("unknown operation " + name);
        }
        return "";
    }

    template <class Consumer>
    static void Store(const Json& op, Consumer consume) {
        const std::string type = op.at(2);
        if (type == "int") {
            consume(op.at(3).get<INT_32>());
        } else if (type == "u64") {
            consume(UINT_64{std::stoull(op.at(3).get<std::string>())});
        } else if (type == "bool") {
            consume(op.at(3).get<bool>());
        } else if (type == "real") {
            consume(std::stod(op.at(3).get<std::string>()));
        } else if (type == "float") {
            consume(std::stof(op.at(3).get<std::string>()));
        } else if (type == "str") {
            consume(op.at(3).get<std::string>());
        } else if (type == "cstr") {
            consume(op.at(3).get<std::string>().c_str());
        } else if (type == "undef") {
            consume(CDT());
        } else if (type == "hash") {
            consume(CDT(CDT::HASH_VAL));
        } else if (type == "array") {
            consume(CDT(CDT::ARRAY_VAL));
        } else if (type == "emptystr") {
            consume(CDT(CDT::STRING_VAL));
        } else {
            throw std::invalid_argument("unknown type " + type);
        }
    }

    template <class Tree>
    static Tree& Walk(Tree& tree, const Json& path) {
        Tree* node = &tree;
        for (std::size_t i = 1; i < path.size(); ++i) {
            node = path[i].is_string() ? &(*node)[path[i].get<std::string>()]
                                       : &(*node)[path[i].get<UINT_32>()];
        }
        return *node;
    }

    CDT& Node(const Json& path) { return Walk<CDT>(trees[path.at(0).get<std::string>()], path); }

    const CDT& ConstNode(const Json& path) {
        return Walk<const CDT>(trees[path.at(0).get<std::string>()], path);
    }

    static std::string ToText(bool value) { return value ? "true" : "false"; }

    std::map<std::string, CDT> trees;
};

class CDTCases : public testing::TestWithParam<Case> {};

TEST_P(CDTCases, GivesTheSameJSON) {
    Interpreter interpreter;
    for (std::size_t i = 0; i < GetParam().ops.size(); ++i) {
        const Json& op = GetParam().ops[i];
        SCOPED_TRACE(op.dump());
        EXPECT_EQ(interpreter.Run(op), GetParam().results.value(std::to_string(i), ""));
    }
    EXPECT_EQ(ToJSON(interpreter.Root()), GetParam().json);
    EXPECT_TRUE(Json::accept(GetParam().json));
}

INSTANTIATE_TEST_SUITE_P(Recorded, CDTCases, testing::ValuesIn(LoadCases()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
