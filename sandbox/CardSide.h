// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sandbox/HttpServer.h"
#include "sandbox/State.h"
#include "sandbox/WireRequest.h"

namespace korvane::sandbox {

/// An answer, and what the log says about it.
struct LoggedAnswer {
    HttpAnswer answer;
    std::string note;
};

/// Answers a request to one of the ten endpoints: faults first, then the wire format, the bearer token, the
/// IV, and the endpoint itself. Takes the state's mutex. Throws DatabaseError.
LoggedAnswer answerCardSide(State& state, const Endpoint& endpoint, const HttpRequest& request);

/// Answers a request to "/" or a path under "/host/": plain JSON, no authentication. Takes the state's mutex.
/// Throws DatabaseError.
///
///   POST   /host/iv           {"ivId", "iv"}: a new IV, 16 bytes in base64
///   POST   /host/sms          {"code", "cardId"}: the last code sent; a body {"cardId"} asks for one card's
///   GET    /host/cards        [{"id", "type", "status", "pin", "name"}, …]; not the magic ones
///   GET    /host/cards/ID     the whole card
///   GET    /host/magic        [{"id", "type", "status", "pin", "name", "does", "fault"}, …]: the magic ones
///   GET    /host/faults       the rules in force, each with what is "left" of its count
///   POST   /host/faults       adds the rule, or the list of rules, of the body (see FaultRule.h)
///   DELETE /host/faults       forgets all rules
///   GET    /host/faults/keys  [{"key", "takes", "meaning"}, …]: what a rule may say
///   GET    /host/journal      see Journal.h; ?endpoint= and ?card= choose, ?since= and ?last= bound
///   POST   /host/reset        cards, tokens, faults and journal as at the start; every IV expires
///
/// "GET /" is a page that shows all this in a browser.
LoggedAnswer answerHostSide(State& state, const HttpRequest& request);

}  // namespace korvane::sandbox
