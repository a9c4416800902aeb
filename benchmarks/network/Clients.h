// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/platform/UrlSession.h>

#include <functional>
#include <memory>
#include <string>

#include "operations/Operations.h"

namespace korvane::bench {

/// A way to have a PIN set by the card service, from the call to the answer's last step. Main thread.
class Client {
  public:
    virtual ~Client() = default;
    /// What is not to be measured.
    virtual void prepare() {}
    /// One whole call, waited for; a wrong answer ends the process.
    virtual void setPin() = 0;
};

/// The component as a client: any of its operations, too.
class OwnClient : public Client {
  public:
    using Start = std::function<Handle(StatePtr, OperationCompletion)>;
    /// Of the card that the operations are for.
    virtual StatePtr state() = 0;
    /// One whole operation, waited for; a failure ends the process.
    virtual void run(const Start& start) = 0;
};

/// The component on a GLib main context, and on Qt's event loop: `doPinSet`, its main-queue hops and its log
/// lines (to a null device) included. Both go through the same session, as one app would.
std::unique_ptr<OwnClient> onGLib(std::shared_ptr<UrlSession> session);
std::unique_ptr<OwnClient> onQt(std::shared_ptr<UrlSession> session);

/// A call as the component makes it, for others to make the same.
struct Call {
    UrlRequest request;
    std::string caFile;
    std::string ivId;
    std::string iv;  ///< its bytes
    std::string cardId;
    std::string pciToken;
};

/// The bound: one libcurl easy handle, kept alive, that posts the call's body and enciphers, deciphers and
/// reads nothing.
std::unique_ptr<Client> bareCurl(const Call& call);

/// What an engineer would write with Qt: QNetworkAccessManager, QJsonDocument, and OpenSSL for the fields.
std::unique_ptr<Client> qtNetwork(const Call& call);

}  // namespace korvane::bench
