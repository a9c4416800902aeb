// SPDX-License-Identifier: Apache-2.0
#include "common/HostService.h"

#include <korvane/platform/Ports.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <chrono>
#include <list>
#include <map>
#include <optional>
#include <utility>

namespace korvane {
namespace {

std::string textMember(const rapidjson::Value& object, const char* name) {
    if (!object.IsObject()) return {};
    const auto member = object.FindMember(name);
    if (member == object.MemberEnd() || !member->value.IsString()) return {};
    return {member->value.GetString(), member->value.GetStringLength()};
}

std::string objectOf(const char* name, const std::string& text) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key(name);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
    writer.EndObject();
    return buffer.GetString();
}

std::string statusInWords(const std::string& code) {
    static const std::map<std::string, std::string> words{
        {"A1", "Active"}, {"BT", "Frozen"}, {"P2", "Not activated"}};
    const auto word = words.find(code);
    return word == words.end() ? code : word->second;
}

}  // namespace

/// The requests under way: each keeps its handle until it is answered.
class HostService::Calls : public std::enable_shared_from_this<Calls> {
  public:
    void start(const std::string& method, const std::string& url, const std::string& body,
               std::function<void(const rapidjson::Document&)> answer) {
        UrlRequest request{method, url, {{"Content-Type", "application/json"}}, body};
        const auto task = tasks_.emplace(tasks_.end());
        *task = ports().urlSession->start(
            std::move(request), [weak = weak_from_this(), task, answer = std::move(answer),
                                 queue = ports().mainQueue](const UrlReply& reply) {
                queue->post([weak, task, answer, reply] {
                    const auto self = weak.lock();
                    if (!self) return;
                    self->tasks_.erase(task);
                    rapidjson::Document document;
                    if (reply.status == 200)
                        document.Parse<rapidjson::kParseIterativeFlag>(reply.body.data(), reply.body.size());
                    if (document.HasParseError()) document.SetNull();
                    answer(document);
                });
            });
    }

  private:
    std::list<std::unique_ptr<UrlTask>> tasks_;
};

/// Asks again and again: the service has no way to call.
class HostService::SmsWatch : public std::enable_shared_from_this<SmsWatch> {
  public:
    SmsWatch(std::shared_ptr<Calls> calls, std::string url, std::string body,
             std::function<void(std::string)> arrived)
        : calls_(std::move(calls)),
          url_(std::move(url)),
          body_(std::move(body)),
          arrived_(std::move(arrived)) {}

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

    std::shared_ptr<Calls> calls_;
    std::string url_;
    std::string body_;
    std::function<void(std::string)> arrived_;
    std::optional<std::string> last_;
    std::unique_ptr<Timer> pause_;
};

HostService::HostService(std::string url) : url_(std::move(url)), calls_(std::make_shared<Calls>()) {}

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
    const auto watch = std::make_shared<SmsWatch>(calls_, url_ + "/sms", objectOf("cardId", cardId), arrived);
    watch->look();
    return watch;
}

void HostService::delayNext(const std::string& endpoint, int milliseconds,
                            const std::function<void()>& done) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("endpoint");
    writer.String(endpoint.data(), static_cast<rapidjson::SizeType>(endpoint.size()));
    writer.Key("delayMs");
    writer.Int(milliseconds);
    writer.EndObject();
    calls_->start("POST", url_ + "/faults", buffer.GetString(),
                  [done](const rapidjson::Document&) { done(); });
}

void HostService::pin(const std::string& cardId, const std::function<void(std::string)>& answer) {
    calls_->start("GET", url_ + "/cards/" + cardId, {},
                  [answer](const rapidjson::Document& card) { answer(textMember(card, "pin")); });
}

}  // namespace korvane
