#include "bindings/simulator/play/scenario.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>

#include "bindings/document/document_time.h"
#include "bindings/document/fault_reader.h"
#include "bindings/document/node.h"
#include "bindings/document/read_document.h"
#include "bindings/document/value_names.h"
#include "bindings/simulator/edit/device_edit.h"
#include "bindings/simulator/edit/device_path.h"
#include "bindings/simulator/edit/notification_types.h"

namespace binding {

namespace {

using json = nlohmann::ordered_json;

constexpr double kShortest = 0.1;
/// More than anybody writes by hand; without a limit, a short file could ask for more than memory
/// holds.
constexpr std::size_t kMostChanges = 100'000;

/// When an event happens, and when the steps of its ramps do.
struct Times {
    Milliseconds begin{0};
    Milliseconds length{0};
    Milliseconds interval{1000};
    std::shared_ptr<const Condition> condition = nullptr;
};

std::string ReadString(const Node& node, const char* expected) {
    if (!node.Value().is_string() || node.Value().get_ref<const std::string&>().empty()) {
        node.Expected(expected);
    }
    return node.Value().get<std::string>();
}

/// An integer small enough to be added, and multiplied by a number of steps, in 64 bits.
std::int64_t ReadInteger(const Node& node) {
    constexpr std::int64_t kLargest = 1'000'000'000'000'000;
    const auto number = NumberOf<std::int64_t>(node.Value());
    if (!number || *number < -kLargest || *number > kLargest) {
        node.Expected("an integer of at most 15 digits");
    }
    return *number;
}

/// The share of @p whole that is reached at step @p step of @p steps, in integers.
std::int64_t Part(std::int64_t whole, std::int64_t step, std::int64_t steps) {
    return whole / steps * step + whole % steps * step / steps;
}

class ScenarioReader {
  public:
    ScenarioReader(std::string newFile, const std::string& newText)
        : file(std::move(newFile)), text(newText) {}

    Scenario Read(const json& document) {
        const Node root(document);
        Members members(root);
        if (const auto title = members.Find("title")) {
            scenario.title = ReadString(*title, "a text that is not empty");
        }
        const auto events = members.Find("events");
        if (!events) {
            root.Expected("an object with \"events\"", "one without");
        }
        events->MustBeList();
        for (std::size_t index = 0; index < events->Value().size(); ++index) {
            ReadEvent(events->Element(index));
        }
        const auto duration = members.Find("duration");
        if (duration) {
            const Milliseconds end = ReadSeconds(*duration, 0);
            if (end < scenario.duration) {
                duration->Expected("the time at which the last event ends, or a later one");
            }
            scenario.duration = end;
        }
        members.RejectOthers();
        return std::move(scenario);
    }

  private:
    void ReadEvent(const Node& event) {
        Members members(event);
        const Times times = ReadTimes(event, members);
        // An event without changes still needs an instant, which holds its text.
        Instant& instant = scenario.instants[times.begin];
        const auto say = members.Find("say");
        if (!say) {
            event.Expected("an event with \"say\"", "one without");
        }
        instant.said.push_back(ReadString(*say, "a text that is not empty"));
        if (const auto heal = members.Find("heal")) {
            ReadHeal(*heal, instant);
        }
        if (const auto set = members.Find("set")) {
            ReadSet(*set, instant);
        }
        if (const auto ramp = members.Find("ramp")) {
            ReadRamps(*ramp, times);
        } else if (times.length > Milliseconds(0)) {
            event.Expected("a \"ramp\" beside \"for\"", "none");
        }
        if (const auto fail = members.Find("fail")) {
            ReadFail(*fail, instant);
        }
        if (const auto clear = members.Find("clear")) {
            ReadClear(*clear, instant);
        }
        if (const auto notify = members.Find("notify")) {
            ReadNotify(*notify, instant);
        }
        members.RejectOthers();
    }

    Times ReadTimes(const Node& event, Members& members) {
        Times times;
        const auto at = members.Find("at");
        if (!at) {
            event.Expected("an event with \"at\"", "one without");
        }
        times.begin = ReadSeconds(*at, 0);
        if (times.begin < lastBegin) {
            at->Expected("a time that is not before that of the event above");
        }
        lastBegin = times.begin;
        if (const auto length = members.Find("for")) {
            times.length = ReadSeconds(*length, kShortest);
        }
        if (const auto interval = members.Find("every")) {
            times.interval = ReadSeconds(*interval, kShortest);
            if (times.length == Milliseconds(0)) {
                interval->Expected("\"for\" beside it", "none");
            }
        }
        if (const auto condition = members.Find("while")) {
            if (times.length == Milliseconds(0)) {
                condition->Expected("\"for\" beside it", "none");
            }
            times.condition = ReadCondition(*condition);
        }
        scenario.duration = std::max(scenario.duration, times.begin + times.length);
        return times;
    }

    std::shared_ptr<const Condition> ReadCondition(const Node& object) const {
        object.MustBeObject();
        if (object.Value().empty()) {
            object.Expected("an object with at least one path", "none");
        }
        Condition condition;
        for (const auto& item : object.Value().items()) {
            const Node value = object.Member(item.key());
            if (!value.Value().is_primitive() || value.Value().is_null()) {
                value.Expected("a number, a text, true or false");
            }
            condition.push_back(
                {PlaceOf(value), item.key(), std::make_shared<const json>(value.Value())});
        }
        return std::make_shared<const Condition>(std::move(condition));
    }

    void ReadHeal(const Node& list, Instant& instant) {
        list.MustBeList();
        for (std::size_t index = 0; index < list.Value().size(); ++index) {
            const Node call = list.Element(index);
            Add(instant, call, [path = ReadString(call, "the name of a call")](json& document) {
                HealCall(document, ResolvePath(path, document));
            });
        }
    }

    void ReadSet(const Node& object, Instant& instant) {
        object.MustBeObject();
        for (const auto& item : object.Value().items()) {
            Add(instant, object.Member(item.key()),
                [path = item.key(), value = item.value()](json& document) {
                    SetValue(document, ResolvePath(path, document), value);
                });
        }
    }

    void ReadFail(const Node& object, Instant& instant) {
        object.MustBeObject();
        for (const auto& item : object.Value().items()) {
            const Node code = object.Member(item.key());
            if (code.IsObject()) {
                CheckFaultOrder(code);
            } else if (!code.Value().is_string() && !code.Value().is_number_integer()) {
                // Which names there are depends on the call.
                code.Expected("a 32-bit integer, the name of a code or an object");
            }
            Add(instant, code, [path = item.key(), fault = item.value()](json& document) {
                FailCall(document, ResolvePath(path, document), fault);
            });
        }
    }

    void ReadClear(const Node& list, Instant& instant) {
        if (list.Value().is_string() && list.Value() == "all") {
            Add(instant, list, [](json& document) { ClearNotifications(document, ""); });
            return;
        }
        if (!list.Value().is_array()) {
            list.Expected("a list of notification types, \"all\"");
        }
        for (std::size_t index = 0; index < list.Value().size(); ++index) {
            const Node id = list.Element(index);
            Add(instant, id, [type = ReadString(id, "a type of notification")](json& document) {
                ClearNotifications(document, type);
            });
        }
    }

    void ReadNotify(const Node& list, Instant& instant) {
        list.MustBeList();
        for (std::size_t index = 0; index < list.Value().size(); ++index) {
            const Node notification = list.Element(index);
            const json made = ReadNotification(notification);
            Add(instant, notification, [made](json& document) { AddNotification(document, made); });
        }
    }

    /// A type, or an object with "type" and the fields that differ from the usual ones.
    static json ReadNotification(const Node& node) {
        NotificationFields fields;
        std::string type;
        if (node.Value().is_string()) {
            type = ReadString(node, "a type of notification");
        } else {
            Members members(node);
            const auto typeNode = members.Find("type");
            if (!typeNode) {
                node.Expected("a notification with \"type\"", "one without");
            }
            type = ReadString(*typeNode, "a type of notification");
            const auto read = [&members](const char* name, std::optional<std::string>& field) {
                if (const auto member = members.Find(name)) {
                    field = ReadString(*member, "a text that is not empty");
                }
            };
            read("category", fields.category);
            if (const auto severity = members.Find("severity")) {
                fields.severity = std::make_shared<nlohmann::ordered_json>(severity->Value());
            }
            read("labelId", fields.labelId);
            read("titleId", fields.titleId);
            read("textId", fields.textId);
            members.Field("active", fields.active).RejectOthers();
        }
        try {
            return MakeNotification(type, fields);
        } catch (const std::runtime_error& error) {
            throw ValueError(node.Path(), PathText(node.Path()) + ": " + error.what());
        }
    }

    void ReadRamps(const Node& object, const Times& times) {
        object.MustBeObject();
        if (times.length == Milliseconds(0)) {
            object.Expected("\"for\", the seconds that it takes, beside it", "none");
        }
        for (const auto& item : object.Value().items()) {
            ReadRamp(object.Member(item.key()), item.key(), times);
        }
    }

    /// "from" and "to", or "by" with the limits "min" and "max".
    void ReadRamp(const Node& ramp, const std::string& path, const Times& times) {
        Members members(ramp);
        const auto by = members.Find("by");
        if (by) {
            Move whole{.by = ReadInteger(*by)};
            if (const auto least = members.Find("min")) {
                whole.least = ReadInteger(*least);
            }
            if (const auto most = members.Find("max")) {
                whole.most = ReadInteger(*most);
                if (whole.least && *whole.most < *whole.least) {
                    most->Expected("a number that is not below \"min\"");
                }
            }
            members.RejectOthers();
            AddMoves(ramp, path, whole, times);
            return;
        }
        const auto from = members.Find("from");
        const auto to = members.Find("to");
        if (!from || !to) {
            ramp.Expected("\"from\" and \"to\", or \"by\"", "neither");
        }
        const std::int64_t first = ReadInteger(*from);
        const std::int64_t last = ReadInteger(*to);
        members.RejectOthers();
        AddSteps(ramp, path, first, last, times);
    }

    static std::int64_t StepsIn(const Times& times) {
        return (times.length + times.interval - Milliseconds(1)) / times.interval;
    }

    static Milliseconds TimeOf(std::int64_t step, const Times& times) {
        return times.begin + std::min(times.length, times.interval * step);
    }

    void AddSteps(const Node& ramp, const std::string& path, std::int64_t first, std::int64_t last,
                  const Times& times) {
        const std::string where = PlaceOf(ramp);
        const std::int64_t steps = StepsIn(times);
        std::int64_t before = first;
        for (std::int64_t step = 0; step <= steps; ++step) {
            const std::int64_t number = first + Part(last - first, step, steps);
            // While the ramp's number stays the same, nothing is written: somebody else may have
            // changed the value meanwhile.
            if (step == 0 || number != before) {
                AddStep(scenario.instants[TimeOf(step, times)], ramp,
                        {.where = where,
                         .apply =
                             [path, number](json& document) {
                                 SetValue(document, ResolvePath(path, document), number);
                             },
                         .differsOnlyInNumber = step != 0 && step != steps,
                         .condition = times.condition});
            }
            before = number;
        }
    }

    void AddMoves(const Node& ramp, const std::string& path, const Move& whole,
                  const Times& times) {
        const std::string where = PlaceOf(ramp);
        const std::int64_t steps = StepsIn(times);
        bool isFirst = true;
        for (std::int64_t step = 1; step <= steps; ++step) {
            Move move = whole;
            move.by = Part(whole.by, step, steps) - Part(whole.by, step - 1, steps);
            if (move.by != 0) {
                AddStep(scenario.instants[TimeOf(step, times)], ramp,
                        {.where = where,
                         .apply =
                             [path, move](json& document) {
                                 MoveNumber(document, ResolvePath(path, document), move);
                             },
                         .differsOnlyInNumber = !isFirst,
                         .condition = times.condition});
                isFirst = false;
            }
        }
    }

    /// Where @p node is in the file, as told to people.
    std::string PlaceOf(const Node& node) const {
        const auto place = FindValue(text, node.Path());
        return file + ":" + std::to_string(place ? place->line : 1) + ": " + PathText(node.Path());
    }

    // cppcheck-suppress constParameter ; cppcheck does not see that the step is added
    void Add(Instant& instant, const Node& node, std::function<void(json&)> apply) {
        AddStep(instant, node, {.where = PlaceOf(node), .apply = std::move(apply)});
    }

    void AddStep(Instant& instant, const Node& node, Change change) {
        if (++changes > kMostChanges) {
            node.Expected("at most 100000 changes in a scenario", "more");
        }
        instant.changes.push_back(std::move(change));
    }

    const std::string file;
    const std::string& text;
    Scenario scenario;
    std::size_t changes = 0;
    Milliseconds lastBegin{0};
};

/// Runs @p step. An error that it throws is thrown as std::runtime_error, its text prefixed with
/// @p where, the place in the file that asks for the step.
template <typename Step>
void RunWithPlace(const std::string& where, Step step) {
    const auto fail = [&where](const std::string& what) {
        throw std::runtime_error(where + ": " + what);
    };
    try {
        step();
    } catch (const UnknownName& error) {
        fail(WithSuggestion(error));
    } catch (const std::exception& error) {
        fail(error.what());
    }
}

/// Whether both values mean the same at @p path, where one may be a number and the other its name.
bool IsSame(const KeyPath& path, const json& one, const json& other) {
    const auto number = NumberAt(path, one);
    return one == other || (number && number == NumberAt(path, other));
}

bool Holds(const Change& change, const json& document) {
    return change.condition == nullptr ||
           std::all_of(change.condition->begin(), change.condition->end(),
                       [&](const Requirement& requirement) {
                           bool isMet = false;
                           RunWithPlace(requirement.where, [&] {
                               const KeyPath path = ResolvePath(requirement.path, document);
                               const json* const found = ValueAt(document, path);
                               isMet = found != nullptr && IsSame(path, *found, *requirement.value);
                           });
                           return isMet;
                       });
}

/// Throws if the condition can never hold, because the device cannot have the value.
void MustBePossible(const Requirement& requirement, json document) {
    RunWithPlace(requirement.where, [&] {
        SetValue(document, ResolvePath(requirement.path, document), *requirement.value);
        MustBeGood(document);
    });
}

}  // namespace

void Instant::Apply(json& document) const {
    for (const Change& change : changes) {
        if (Holds(change, document)) {
            RunWithPlace(change.where, [&] { change.apply(document); });
        }
    }
}

Scenario ReadScenario(const std::string& file, const std::string& text) {
    return ReadDocument(file, text, [&](const json& document) {
        try {
            return ScenarioReader(file, text).Read(document);
        } catch (const UnknownName& error) {
            throw ValueError(error.Path(), WithSuggestion(error));
        }
    });
}

void MustBePlayable(const Scenario& scenario, json document) {
    std::set<std::shared_ptr<const Condition>> tried;
    for (const auto& [time, instant] : scenario.instants) {
        for (const Change& change : instant.changes) {
            if (change.condition != nullptr && tried.insert(change.condition).second) {
                for (const Requirement& requirement : *change.condition) {
                    MustBePossible(requirement, document);
                }
            }
            RunWithPlace(change.where, [&] {
                change.apply(document);
                if (!change.differsOnlyInNumber) {
                    MustBeGood(document);
                }
            });
        }
    }
}

}  // namespace binding
