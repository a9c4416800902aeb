// SPDX-License-Identifier: Apache-2.0
#include "common/HostService.h"

#include <korvane/platform/Ports.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <chrono>
#include <map>
#include <optional>
#include <utility>

#include "common/HostAnswer.h"
#include "common/HostCalls.h"

namespace korvane {
namespace {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

void writeText(Writer& writer, const char* name, const std::string& text) {
    writer.Key(name);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

std::string statusInWords(const std::string& code) {
    static const std::map<std::string, std::string> words{
        {"A1", "Active"}, {"BT", "Frozen"}, {"P2", "Not activated"}};
    const auto word = words.find(code);
    return word == words.end() ? code : word->second;
}

}  // namespace

/// Asks again and again: the service has no way to call.
class HostService::SmsWatch : public std::enable_shared_from_this<SmsWatch> {
  public:
    SmsWatch(std::shared_ptr<HostCalls> calls, std::string url, const std::string& cardId,
             std::function<void(std::string)> arrived)
        : calls_(std::move(calls)), url_(std::move(url)), arrived_(std::move(arrived)) {
        rapidjson::StringBuffer buffer;
        Writer writer(buffer);
        writer.StartObject();
        writeText(writer, "cardId", cardId);
        writer.EndObject();
        body_ = buffer.GetString();
    }

    void look() {
        calls_->start("POST", url_, body_, [weak = weak_from_this()](const rapidjson::Document& sms) {
            if (const auto self = weak.lock()) self->found(textMember(sms, "code"));
        });
    }

  private:
    void found(const std::string& code) {
        // What was there before the watch began is no news.
        const bool news = last_ && *last_ != code;
        last_ = code;
        pause_ = ports().timers->start(std::chrono::milliseconds(500), [this] { look(); });
        if (news) arrived_(code);
    }

    std::shared_ptr<HostCalls> calls_;
    std::string url_;
    std::string body_;
    std::function<void(std::string)> arrived_;
    std::optional<std::string> last_;
    std::unique_ptr<Timer> pause_;
};

HostService::HostService(std::string url) : url_(std::move(url)), calls_(std::make_shared<HostCalls>()) {}

HostService::~HostService() = default;

void HostService::cards(const std::function<void(std::vector<HostCard>)>& answer) {
    calls_->start("GET", url_ + "/cards", {}, [answer](const rapidjson::Document& list) {
        std::vector<HostCard> cards;
        if (list.IsArray()) {
            for (const auto& card : list.GetArray())
                cards.push_back({textMember(card, "id"), textMember(card, "name"), textMember(card, "type"),
                                 statusInWords(textMember(card, "status"))});
        }
        answer(std::move(cards));
    });
}

std::shared_ptr<void> HostService::watchSms(const std::string& cardId,
                                            const std::function<void(std::string)>& arrived) {
    const auto watch = std::make_shared<SmsWatch>(calls_, url_ + "/sms", cardId, arrived);
    watch->look();
    return watch;
}

void HostService::fault(const std::string& rule, const std::function<void(bool taken)>& done) {
    calls_->start("POST", url_ + "/faults", rule,
                  [done](const rapidjson::Document& answer) { done(answer.IsObject()); });
}

void HostService::card(const std::string& cardId, const std::function<void(HostCardRecord)>& answer) {
    calls_->start("GET", url_ + "/cards/" + cardId, {}, [answer](const rapidjson::Document& card) {
        answer({textMember(card, "pan"), textMember(card, "cvv"), textMember(card, "pin"),
                textMember(card, "status")});
    });
}

}  // namespace korvane
