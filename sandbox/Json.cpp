// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Json.h"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/writer.h>

#include <algorithm>

namespace korvane::sandbox {
namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

// Iterative: a deeply nested body must not exhaust the stack.
constexpr unsigned parseFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;

Failure parse(rapidjson::Document& document, std::string_view text) {
    document.Parse<parseFlags>(text.data(), text.size());
    if (!document.HasParseError()) return {};
    const std::string_view before = text.substr(0, document.GetErrorOffset());
    const auto line = 1 + std::ranges::count(before, '\n');
    const auto column = before.size() - (before.rfind('\n') + 1) + 1;  // npos + 1 is 0
    return {std::string("not JSON: ") + rapidjson::GetParseError_En(document.GetParseError()) + " (line " +
            std::to_string(line) + ", column " + std::to_string(column) + ")"};
}

Outcome<JsonObject> objectOf(const rapidjson::Value& value) {
    if (!value.IsObject()) return Failure{"not a JSON object"};
    JsonObject object;
    for (const auto& member : value.GetObject()) {
        std::string key(member.name.GetString(), member.name.GetStringLength());
        if (std::ranges::any_of(object, [&key](const auto& entry) { return entry.first == key; })) {
            return Failure{"key \"" + key + "\" occurs twice"};
        }
        if (member.value.IsString()) {
            object.emplace_back(std::move(key),
                                std::string(member.value.GetString(), member.value.GetStringLength()));
        } else if (member.value.IsBool()) {
            object.emplace_back(std::move(key), member.value.GetBool());
        } else if (member.value.IsInt64()) {
            object.emplace_back(std::move(key), std::int64_t{member.value.GetInt64()});
        } else {
            return Failure{"\"" + key + "\" is neither text nor a whole number nor true or false"};
        }
    }
    return object;
}

void write(Writer& writer, const JsonObject& object) {
    const auto text = [](const std::string& value, auto put) {
        put(value.data(), static_cast<rapidjson::SizeType>(value.size()));
    };
    writer.StartObject();
    for (const auto& [key, value] : object) {
        text(key, [&writer](auto... characters) { writer.Key(characters...); });
        if (const auto* flag = std::get_if<bool>(&value)) {
            writer.Bool(*flag);
        } else if (const auto* number = std::get_if<std::int64_t>(&value)) {
            writer.Int64(*number);
        } else if (const auto* raw = std::get_if<RawJson>(&value)) {
            writer.RawValue(raw->text.data(), raw->text.size(), rapidjson::kObjectType);
        } else {
            text(std::get<std::string>(value),
                 [&writer](auto... characters) { writer.String(characters...); });
        }
    }
    writer.EndObject();
}

}  // namespace

Outcome<JsonObject> readJsonObject(std::string_view text) {
    rapidjson::Document document;
    if (Failure failure = parse(document, text); !failure.reason.empty()) return failure;
    return objectOf(document);
}

Outcome<std::vector<JsonObject>> readJsonObjects(std::string_view text) {
    rapidjson::Document document;
    if (Failure failure = parse(document, text); !failure.reason.empty()) return failure;
    std::vector<JsonObject> objects;
    const auto append = [&objects](const rapidjson::Value& value) {
        Outcome<JsonObject> object = objectOf(value);
        if (object) objects.push_back(std::move(*object));
        return object.reason();
    };
    if (!document.IsArray()) {
        if (std::string reason = append(document); !reason.empty()) return Failure{reason};
        return objects;
    }
    for (const auto& element : document.GetArray()) {
        if (std::string reason = append(element); !reason.empty()) {
            return Failure{"element " + std::to_string(objects.size() + 1) + ": " + reason};
        }
    }
    return objects;
}

std::string writeJson(const JsonObject& object) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    write(writer, object);
    return {buffer.GetString(), buffer.GetSize()};
}

std::string writeJson(const std::vector<JsonObject>& objects) {
    rapidjson::StringBuffer buffer;
    Writer writer(buffer);
    writer.StartArray();
    for (const JsonObject& object : objects) write(writer, object);
    writer.EndArray();
    return {buffer.GetString(), buffer.GetSize()};
}

}  // namespace korvane::sandbox
