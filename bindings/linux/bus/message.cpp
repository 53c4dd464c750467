#include "bindings/linux/bus/message.h"

#include <nlohmann/json.hpp>
#include <string>

namespace binding {

namespace {

using nlohmann::json;

// Each function returns whether the message could be read; the first failure ends the reading.
bool ReadOne(sd_bus_message* message, json& value);

template <typename T>
bool ReadBasic(sd_bus_message* message, char type, json& value) {
    T number{};
    const bool read = sd_bus_message_read_basic(message, type, &number) > 0;
    if (read) {
        value = number;
    }
    return read;
}

bool ReadBoolean(sd_bus_message* message, json& value) {
    int number = 0;
    const bool read = sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &number) > 0;
    if (read) {
        value = number != 0;
    }
    return read;
}

/// Reads the values until the end of the container.
bool ReadList(sd_bus_message* message, json& list) {
    list = json::array();
    int atEnd = 0;
    while ((atEnd = sd_bus_message_at_end(message, 0)) == 0) {
        if (!ReadOne(message, list.emplace_back())) {
            return false;
        }
    }
    return atEnd > 0;
}

bool ReadEntry(sd_bus_message* message, const char* contents, json& object) {
    json key;
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, contents) <= 0 ||
        !ReadOne(message, key)) {
        return false;
    }
    json& value = object[key.is_string() ? key.get<std::string>() : key.dump()];
    return ReadOne(message, value) && sd_bus_message_exit_container(message) >= 0;
}

bool ReadDictionary(sd_bus_message* message, json& object) {
    object = json::object();
    const char* contents = nullptr;
    char type = 0;
    int result = 0;
    while ((result = sd_bus_message_peek_type(message, &type, &contents)) > 0) {
        if (!ReadEntry(message, contents, object)) {
            return false;
        }
    }
    return result == 0;
}

bool ReadContainer(sd_bus_message* message, char type, const char* contents, json& value) {
    if (sd_bus_message_enter_container(message, type, contents) <= 0) {
        return false;
    }
    bool read = false;
    if (type == SD_BUS_TYPE_ARRAY && *contents == SD_BUS_TYPE_DICT_ENTRY_BEGIN) {
        read = ReadDictionary(message, value);
    } else if (type == SD_BUS_TYPE_VARIANT) {
        read = ReadOne(message, value);
    } else {
        read = ReadList(message, value);
    }
    return read && sd_bus_message_exit_container(message) >= 0;
}

bool ReadOne(sd_bus_message* message, json& value) {
    char type = 0;
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(message, &type, &contents) <= 0) {
        return false;
    }
    switch (type) {
        case SD_BUS_TYPE_BOOLEAN:
            return ReadBoolean(message, value);
        case SD_BUS_TYPE_BYTE:
            return ReadBasic<std::uint8_t>(message, type, value);
        case SD_BUS_TYPE_INT16:
            return ReadBasic<std::int16_t>(message, type, value);
        case SD_BUS_TYPE_UINT16:
            return ReadBasic<std::uint16_t>(message, type, value);
        case SD_BUS_TYPE_INT32:
            return ReadBasic<std::int32_t>(message, type, value);
        case SD_BUS_TYPE_UINT32:
            return ReadBasic<std::uint32_t>(message, type, value);
        case SD_BUS_TYPE_INT64:
            return ReadBasic<std::int64_t>(message, type, value);
        case SD_BUS_TYPE_UINT64:
            return ReadBasic<std::uint64_t>(message, type, value);
        case SD_BUS_TYPE_DOUBLE:
            return ReadBasic<double>(message, type, value);
        case SD_BUS_TYPE_STRING:
        case SD_BUS_TYPE_OBJECT_PATH:
        case SD_BUS_TYPE_SIGNATURE:
            return ReadBasic<const char*>(message, type, value);
        case SD_BUS_TYPE_ARRAY:
        case SD_BUS_TYPE_VARIANT:
        case SD_BUS_TYPE_STRUCT:
            return ReadContainer(message, type, contents, value);
        default:
            // A file descriptor, for which nobody here has a use.
            return sd_bus_message_skip(message, nullptr) >= 0;
    }
}

}  // namespace

nlohmann::json Arguments(sd_bus_message* message) {
    nlohmann::json list;
    (void)ReadList(message, list);
    return list;
}

}  // namespace binding
