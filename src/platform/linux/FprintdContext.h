// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <korvane/Export.h>
#include <korvane/platform/BiometricContext.h>
#include <korvane/platform/BiometricPrompt.h>
#include <korvane/platform/MainQueue.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace korvane {

class GLibThread;

/// Where the daemon is, and how long a check may take. The defaults are meant for use.
struct FprintdContextOptions {
    /// D-Bus address of the bus that the daemon is on; "" stands for the system bus.
    std::string busAddress;
    /// A check that has no outcome by then is answered with false, whether or not its prompt was ever seen.
    std::chrono::milliseconds timeout = std::chrono::seconds(60);
};

/// Fingerprint checks by fprintd (net.reactivated.Fprint over D-Bus), for the user that the process runs as.
/// `evaluate`, the release of its handle and the destructor belong to the main thread; replies run there too,
/// by the main queue. The daemon is spoken to on one thread of the context's own, one check after the other,
/// so nothing there waits for it.
///
/// The reader is armed (claimed and verifying) only while the prompt is visible; it is released on every way
/// out: match, no match, cancel, time-out, prompt out of sight, daemon lost, reader unplugged. Each arming
/// has a connection of its own, and the daemon lets go of a reader whose claimer's connection ends.
///
/// A check is true on the daemon's "verify-match" alone. Three fingers that do not match end it with false;
/// the prompt is told "sdk.biometrics.nomatch" before the second and the third, and "sdk.biometrics.retry"
/// when the reader could not read a finger, which does not count. A reader in use by somebody else is asked
/// for again for about 5 s.
class KORVANE_API FprintdContext final : public BiometricContext {
  public:
    /// Starts the thread, and asks the daemon nothing yet.
    FprintdContext(std::shared_ptr<MainQueue> mainQueue, std::shared_ptr<BiometricPrompt> prompt,
                   FprintdContextOptions options = {});
    /// Drops the checks under way with their prompts, and waits until the reader is released (2 s at most).
    ~FprintdContext() override;

    /// True when there is a reader with a finger enrolled. Asks the daemon, which may have to start first: 2
    /// s at most. Any thread.
    bool canEvaluate() override;
    std::unique_ptr<BiometricEvaluation> evaluate(std::string reason,
                                                  std::function<void(bool)> reply) override;

  private:
    struct KORVANE_HIDDEN Check;
    class KORVANE_HIDDEN Evaluation;
    class KORVANE_HIDDEN Wish;
    using Tell = std::function<void(const char* messageId)>;
    using Finish = std::function<void(bool match)>;
    KORVANE_HIDDEN void run(const Wish& wish, std::int64_t deadline, const Tell& tell,
                            const Finish& finish) const;
    KORVANE_HIDDEN bool waitUntilArmed(const Wish& wish, std::int64_t deadline) const;

    const std::shared_ptr<MainQueue> mainQueue_;
    const std::shared_ptr<BiometricPrompt> prompt_;
    const FprintdContextOptions options_;
    std::vector<std::weak_ptr<Check>> checks_;
    std::unique_ptr<GLibThread> thread_;
};

}  // namespace korvane
