// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/korvane.h>

#include <atomic>
#include <future>
#include <list>
#include <string>

namespace korvane {

/// A host's supply of IVs: a POST to its own server, which answers {"ivId": text, "iv": base64}. Any other
/// answer, or none within 30 s, supplies no IV. Each question is asked on a thread of its own.
class IvFromUrl {
  public:
    IvFromUrl(std::string url, std::string caFile) : url_(std::move(url)), caFile_(std::move(caFile)) {}
    /// Breaks off what is still being asked.
    ~IvFromUrl();
    IvFromUrl(const IvFromUrl&) = delete;
    IvFromUrl& operator=(const IvFromUrl&) = delete;

    /// For `korvane_config`; the context is the object.
    static void supply(void* self, korvane_iv_request* request);

  private:
    void ask(korvane_iv_request* request) const;
    std::string post() const;

    const std::string url_;
    const std::string caFile_;
    std::atomic<bool> stopping_ = false;
    std::list<std::future<void>> asking_;
};

}  // namespace korvane
