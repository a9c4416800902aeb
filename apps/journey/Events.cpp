// SPDX-License-Identifier: Apache-2.0
#include "Events.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace korvane {
namespace {

void write(rapidjson::Writer<rapidjson::StringBuffer>& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

std::string withoutCountdowns(const rapidjson::Document& screen) {
    rapidjson::Document rest;
    rest.CopyFrom(screen, rest.GetAllocator());
    auto& state = rest["state"];
    for (auto left = state.MemberCount(); left-- > 0;) {
        const auto member = state.MemberBegin() + left;
        if (member->value.IsNumber() && member->name != "digits") state.EraseMember(member);
    }
    return screenEvent(rest);
}

}  // namespace

std::string event(std::string_view name, std::string_view member, std::string_view text) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer writer(buffer);
    writer.StartObject();
    write(writer, "event");
    write(writer, name);
    write(writer, member);
    write(writer, text);
    writer.EndObject();
    return buffer.GetString();
}

std::string custodyEvent(bool tokenInMemory, bool timerPciExpired) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer writer(buffer);
    writer.StartObject();
    write(writer, "event");
    write(writer, "custody");
    write(writer, "tokenInMemory");
    writer.Bool(tokenInMemory);
    write(writer, "timerPciExpired");
    writer.Bool(timerPciExpired);
    writer.EndObject();
    return buffer.GetString();
}

std::string screenEvent(const rapidjson::Document& screen) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer writer(buffer);
    writer.StartObject();
    write(writer, "event");
    write(writer, "screen");
    for (const char* const member : {"view", "stack", "state", "controls"}) {
        write(writer, member);
        screen[member].Accept(writer);
    }
    writer.EndObject();
    return buffer.GetString();
}

bool differ(const rapidjson::Document& one, const rapidjson::Document& other) {
    return one["instance"] != other["instance"] || withoutCountdowns(one) != withoutCountdowns(other);
}

}  // namespace korvane
