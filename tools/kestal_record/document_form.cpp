#include "tools/kestal_record/document_form.h"

#include <utf8.h>

#include "platform/sysint.h"
#include "platform/webui.h"

namespace {

constexpr const char* kText = "text";
constexpr const char* kRoom = "room";
constexpr const char* kBytes = "bytes";

/// Whether @p value is what RawText makes. Values with these names that a device has are objects or
/// numbers.
bool IsRawText(const Json& value) {
    return value.is_object() && value.size() == 2 && value.contains(kText) &&
           value.contains(kRoom) && value.at(kText).is_string();
}

bool IsBlock(const Json& value) {
    return value.is_object() && value.size() == 1 && value.contains(kBytes) &&
           value.at(kBytes).is_string();
}

std::string Digits(const std::string& bytes) {
    return HexText(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

std::string BytesOf(const Json& block) {
    const auto& digits = block.at(kBytes).get_ref<const std::string&>();
    std::string bytes;
    for (std::size_t index = 0; index + 1 < digits.size(); index += 2) {
        constexpr int kHexadecimal = 16;
        bytes += static_cast<char>(std::stoi(digits.substr(index, 2), nullptr, kHexadecimal));
    }
    return bytes;
}

Json DocumentText(const std::string& text, std::size_t room) {
    if (text.size() < room && utf8::is_valid(text.begin(), text.end())) {
        return text;
    }
    return Json::object({{kBytes, Digits(text)}});
}

void VisitTexts(const Json& value, std::vector<std::string>& path, const TextVisit& visit) {
    if (IsRawText(value)) {
        visit(path, value.at(kText).get<std::string>());
    } else if (IsBlock(value)) {
        visit(path, BytesOf(value));
    } else if (value.is_structured()) {
        for (const auto& item : value.items()) {
            path.push_back(item.key());
            VisitTexts(item.value(), path, visit);
            path.pop_back();
        }
    }
}

Json Finished(const Json& recorded, std::vector<std::string>& path,
              const PlacedTextChange& change) {
    if (IsRawText(recorded)) {
        const auto text = recorded.at(kText).get<std::string>();
        const auto room = recorded.at(kRoom).get<std::size_t>();
        std::string changed = change(path, text, TextLayout::text);
        if (changed.size() > text.size() && changed.size() >= room) {
            // A document with a text that is too long for its field could not be read.
            changed.resize(text.size());
        }
        return DocumentText(changed, room);
    }
    if (IsBlock(recorded)) {
        return Json::object({{kBytes, Digits(change(path, BytesOf(recorded), TextLayout::block))}});
    }
    Json result = recorded;
    if (recorded.is_structured()) {
        for (const auto& item : result.items()) {
            path.push_back(item.key());
            item.value() = Finished(item.value(), path, change);
            path.pop_back();
        }
    }
    return result;
}

}  // namespace

Json FailureOf(const Codes& codes, int code) {
    if (code == SYS_SUCCESS || code == WEBUI_SUCCESS) {
        // A document has no such failures, because they mean success in another part of the
        // platform. The service makes no difference between codes of failure here.
        return Json::object({{"error", codes.bindingBase + 1}});
    }
    const char* name = binding::NameOf(code, codes.platform);
    if (name == nullptr) {
        name = binding::NameOf(std::int64_t{code} - codes.bindingBase, codes.binding);
    }
    return Json::object({{"error", name == nullptr ? Json(code) : Json(name)}});
}

Json RawText(const std::string& text, std::size_t room) {
    return Json::object({{kText, text}, {kRoom, room}});
}

Json Finished(const Json& recorded, const TextChange& change) {
    return Finished(recorded, [&](const std::vector<std::string>& /*path*/, const std::string& text,
                                  TextLayout /*layout*/) { return change(text); });
}

Json Finished(const Json& recorded, const PlacedTextChange& change) {
    std::vector<std::string> path;
    return Finished(recorded, path, change);
}

void VisitTexts(const Json& recorded, const TextVisit& visit) {
    std::vector<std::string> path;
    VisitTexts(recorded, path, visit);
}

Json NumberOrName(std::int64_t value, binding::Enumeration names) {
    const char* const name = binding::NameOf(value, names);
    return name == nullptr ? Json(value) : Json(name);
}

Json WithoutNames(const Json& described) {
    if (!described.is_structured()) {
        return described;
    }
    if (described.is_object() && described.contains("value") && described.contains("name")) {
        const Json& name = described.at("name");
        return name.is_null() ? described.at("value") : name;
    }
    Json result = described;
    for (Json& one : result) {
        one = WithoutNames(one);
    }
    return result;
}
