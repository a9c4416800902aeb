// SPDX-License-Identifier: Apache-2.0
#include "sandbox/InspectionPage.h"

#include <utility>

#include "sandbox/Random.h"

namespace korvane::sandbox {

HttpAnswer inspectionPage(const std::string& token) {
    const std::string nonce = Random(std::nullopt).hex(16);  // of the system: a seed is for keys and codes
    std::string text(inspectionPageText);
    for (const auto& [placeholder, value] : {std::pair{"{{nonce}}", nonce}, {"{{token}}", token}}) {
        for (std::size_t at; (at = text.find(placeholder)) != std::string::npos;)
            text.replace(at, std::string_view(placeholder).size(), value);
    }
    const std::string policy = "default-src 'none'; connect-src 'self'; script-src 'nonce-" + nonce +
                               "'; style-src 'nonce-" + nonce +
                               "'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
    return {200,
            std::move(text),
            {},
            "text/html; charset=utf-8",
            {{"Content-Security-Policy", policy},
             {"Referrer-Policy", "no-referrer"},
             {"X-Content-Type-Options", "nosniff"}}};
}

}  // namespace korvane::sandbox
