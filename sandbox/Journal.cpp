// SPDX-License-Identifier: Apache-2.0
#include "sandbox/Journal.h"

#include "sandbox/State.h"

namespace korvane::sandbox {
namespace {

constexpr std::size_t longestValue = 200;

/// Card pictures are long: their beginning is enough to tell them by, and
/// memory stays bounded.
std::string clipped(const std::string& value) {
    if (value.size() <= longestValue) return value;
    std::size_t end = longestValue;
    while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xC0) == 0x80) --end;  // whole characters
    return value.substr(0, end) + "… (" + std::to_string(value.size()) + " bytes)";
}

void clip(std::vector<std::pair<std::string, std::string>>& fields) {
    for (auto& field : fields) field.second = clipped(field.second);
}

RawJson raw(const std::vector<std::pair<std::string, std::string>>& fields) {
    return {writeJson(JsonObject{fields.begin(), fields.end()})};
}

JsonObject objectOf(const JournalEntry& entry) {
    JsonObject object{{"number", entry.number},
                      {"time", entry.time},
                      {"tookMs", entry.tookMs},
                      {"endpoint", entry.endpoint},
                      {"card", entry.card},
                      {"request", raw(entry.request)},
                      {"status", std::int64_t{entry.status}},
                      {"answer", raw(entry.answer)},
                      {"note", entry.note}};
    if (!entry.sms.empty()) object.emplace_back("sms", entry.sms);
    if (!entry.fault.empty()) object.emplace_back("fault", RawJson{writeJson(entry.fault)});
    return object;
}

}  // namespace

std::int64_t Journal::open(std::string_view endpoint) {
    JournalEntry entry;
    entry.number = next_++;
    entry.time = now();
    entry.endpoint = endpoint;
    ++counts_[entry.endpoint];
    entries_.push_back(std::move(entry));
    if (entries_.size() > JournalQuery::kept) entries_.pop_front();
    return next_ - 1;
}

void Journal::close(JournalEntry entry) {
    if (entries_.empty() || entry.number < entries_.front().number) return;
    JournalEntry& place = entries_[static_cast<std::size_t>(entry.number - entries_.front().number)];
    entry.time = place.time;
    entry.tookMs = now() - place.time;
    clip(entry.request);
    clip(entry.answer);
    entry.note = clipped(entry.note);
    place = std::move(entry);
}

void Journal::clear() {
    entries_.clear();
    counts_.clear();
}

std::string Journal::toJson(const JournalQuery& query) const {
    std::deque<const JournalEntry*> found;
    for (const JournalEntry& entry : entries_) {
        if (entry.number <= query.since) continue;
        if (!query.endpoint.empty() && entry.endpoint != query.endpoint) continue;
        if (!query.card.empty() && entry.card != query.card) continue;
        found.push_back(&entry);
        if (static_cast<std::int64_t>(found.size()) > query.last) found.pop_front();
    }
    std::vector<JsonObject> list;
    list.reserve(found.size());
    for (const JournalEntry* const entry : found) list.push_back(objectOf(*entry));
    JsonObject counts;
    for (const Endpoint& endpoint : endpoints()) {
        const auto counted = counts_.find(endpoint.name);
        counts.emplace_back(endpoint.name, counted == counts_.end() ? std::int64_t{0} : counted->second);
    }
    return writeJson(JsonObject{
        {"counts", RawJson{writeJson(counts)}}, {"next", next_}, {"entries", RawJson{writeJson(list)}}});
}

}  // namespace korvane::sandbox
