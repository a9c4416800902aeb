// SPDX-License-Identifier: Apache-2.0
#include "Events.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <array>

namespace korvane {
namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void write(Writer& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void write(Writer& writer, std::string_view name, std::string_view text) {
    write(writer, name);
    write(writer, text);
}

void writeValue(Writer& writer, const StateValue& value) {
    if (const bool* const flag = std::get_if<bool>(&value)) {
        writer.Bool(*flag);
    } else if (const int* const number = std::get_if<int>(&value)) {
        writer.Int(*number);
    } else {
        write(writer, std::get<std::string>(value));
    }
}

std::string_view kindName(ControlKind kind) {
    static constexpr std::array<std::string_view, 6> names{"button", "toggle", "passcode",
                                                           "row",    "close",  "back"};
    return names[static_cast<std::size_t>(kind)];
}

void writeState(Writer& writer, const ScreenSnapshot& screen) {
    writer.StartObject();
    for (const StateField& field : screen.state) {
        write(writer, field.name);
        writeValue(writer, field.value);
    }
    if (screen.passcode) {
        write(writer, "digits");
        writer.Int(screen.passcode->filled);
    }
    if (!screen.message.empty()) write(writer, "message", screen.message);
    if (!screen.toast.empty()) write(writer, "toastMsgId", screen.toast);
    writer.EndObject();
}

/// {"event": name, member: text}
std::string event(std::string_view name, std::string_view member, std::string_view text) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    write(writer, "event", name);
    write(writer, member, text);
    writer.EndObject();
    return buffer.GetString();
}

}  // namespace

std::string screenEvent(const ScreenSnapshot& screen) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    write(writer, "event", "screen");
    write(writer, "view", screen.view);
    write(writer, "stack");
    writer.StartArray();
    for (const std::string& view : screen.stack) write(writer, view);
    writer.EndArray();
    write(writer, "state");
    writeState(writer, screen);
    write(writer, "controls");
    writer.StartArray();
    for (const Control& control : screen.controls) {
        writer.StartObject();
        write(writer, "id", control.id);
        write(writer, "kind", kindName(control.kind));
        write(writer, "enabled");
        writer.Bool(control.enabled);
        if (control.kind == ControlKind::toggle) {
            write(writer, "on");
            writer.Bool(control.on);
        }
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
    return buffer.GetString();
}

std::string toastEvent(std::string_view id) {
    return event("toast", "id", id);
}
std::string pasteboardEvent(std::string_view text) {
    return event("pasteboard", "text", text);
}
std::string closeEvent(std::string_view result) {
    return event("close", "result", result);
}
std::string promptEvent(std::string_view member, std::string_view text) {
    return event("prompt", member, text);
}
std::string custodyEvent(bool tokenInMemory, bool timerPciExpired) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartObject();
    write(writer, "event", "custody");
    write(writer, "tokenInMemory");
    writer.Bool(tokenInMemory);
    write(writer, "timerPciExpired");
    writer.Bool(timerPciExpired);
    writer.EndObject();
    return buffer.GetString();
}
std::string errorEvent(std::string_view message) {
    return event("error", "message", message);
}

bool differ(const ScreenSnapshot& one, const ScreenSnapshot& other) {
    const auto withoutNumbers = [](ScreenSnapshot screen) {
        std::erase_if(screen.state,
                      [](const StateField& field) { return std::holds_alternative<int>(field.value); });
        return screenEvent(screen);
    };
    return one.instance != other.instance || withoutNumbers(one) != withoutNumbers(other);
}

}  // namespace korvane
