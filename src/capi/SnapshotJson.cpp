// SPDX-License-Identifier: Apache-2.0
#include "capi/SnapshotJson.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <array>

#include "capi/WipedMemory.h"

namespace korvane {
namespace {

/// Writes members one after the other; each overload of `value` is one type of the snapshot.
class SnapshotWriter {
  public:
    Wiped<std::string> text() const { return Wiped{std::string(buffer_.GetString(), buffer_.GetSize())}; }

    void value(bool flag) { writer_.Bool(flag); }
    void value(int number) { writer_.Int(number); }
    void value(std::uint64_t number) { writer_.Uint64(number); }
    void value(std::string_view text) {
        writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    }
    void value(const std::string& text) { value(std::string_view(text)); }
    void value(const char* text) { value(std::string_view(text)); }

    void value(const Control& control) {
        object([&] {
            member("id", control.id);
            member("kind", kindName(control.kind));
            member("enabled", control.enabled);
            if (control.kind == ControlKind::toggle) member("on", control.on);
        });
    }
    void value(const Bullet& bullet) {
        object([&] {
            member("symbol", bullet.symbol);
            member("text", bullet.text);
        });
    }
    void value(const PasscodeBoxes& boxes) {
        object([&] {
            member("id", boxes.id);
            member("size", boxes.size);
            member("filled", boxes.filled);
            member("firstResponderIndex", boxes.firstResponderIndex);
            member("secure", boxes.secure);
            present("visibleDigits", boxes.visibleDigits);
        });
    }
    void value(const Sheet& sheet) {
        object([&] {
            member("text", sheet.text);
            member("button", sheet.button);
        });
    }
    void value(const CardFace& card) {
        object([&] {
            if (card.image) member("imageBytes", static_cast<int>(card.image->size()));
            present("name", card.name);
            present("networkLogo", card.networkLogo);
            member("activated", card.activated);
            member("frozen", card.frozen);
            present("message", card.message);
            present("button", card.button);
        });
    }
    void value(const DetailRow& row) {
        object([&] {
            member("id", row.id);
            member("value", row.value);
            member("masked", row.masked);
            member("copyable", row.copyable);
        });
    }
    void value(const Popup& popup) {
        object([&] {
            member("header", popup.header);
            member("body", popup.body);
            member("confirm", popup.confirm);
            member("cancel", popup.cancel);
        });
    }
    template <class Item>
    void value(const std::vector<Item>& items) {
        writer_.StartArray();
        for (const Item& item : items) value(item);
        writer_.EndArray();
    }
    void value(const ScreenSnapshot& screen) {
        object([&] {
            member("view", screen.view);
            member("instance", screen.instance);
            member("depth", screen.depth);
            member("stack", screen.stack);
            writer_.Key("state");
            object([&] { state(screen); });
            member("controls", screen.controls);
            member("spinner", screen.spinner);
            present("image", screen.image);
            present("title", screen.title);
            present("body", screen.body);
            present("bullets", screen.bullets);
            present("passcode", screen.passcode);
            present("message", screen.message);
            present("toast", screen.toast);
            present("sheet", screen.sheet);
            present("card", screen.card);
            present("rows", screen.rows);
            present("popup", screen.popup);
            present("disclosureText", screen.disclosureText);
        });
    }

  private:
    static const char* kindName(ControlKind kind) {
        static constexpr std::array names{"button", "toggle", "passcode", "row", "close", "back"};
        return names[static_cast<std::size_t>(kind)];
    }

    template <class Members>
    void object(Members members) {
        writer_.StartObject();
        members();
        writer_.EndObject();
    }
    template <class Value>
    void member(std::string_view name, const Value& of) {
        writer_.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
        value(of);
    }
    template <class List>
    void present(const char* name, const List& list) {
        if (!list.empty()) member(name, list);
    }
    template <class Value>
    void present(const char* name, const std::optional<Value>& maybe) {
        if (maybe) member(name, *maybe);
    }
    /// The screen's own fields, and what a person has done on it so far.
    void state(const ScreenSnapshot& screen) {
        for (const StateField& field : screen.state)
            std::visit([&](const auto& of) { member(field.name, of); }, field.value);
        if (screen.passcode) member("digits", screen.passcode->filled);
        present("message", screen.message);
        present("toastMsgId", screen.toast);
    }

    using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, WipedMemory>;
    Buffer buffer_;
    rapidjson::Writer<Buffer> writer_{buffer_};
};

}  // namespace

void wipe(ScreenSnapshot& screen) {
    for (DetailRow& row : screen.rows) wipe(row.value);
    if (screen.passcode) wipe(screen.passcode->visibleDigits);
}

Wiped<std::string> snapshotJson(const ScreenSnapshot& screen) {
    SnapshotWriter writer;
    writer.value(screen);
    return writer.text();
}

}  // namespace korvane
