#pragma once
// Ctrl-C for a long command: while an InterruptScope lives, SIGINT sets its CancelToken (a
// lock-free atomic store, safe in a signal handler) so the work stops at its next check and the
// command reports what it did so far. One scope at a time; main thread only.

#include "core/util/cancel_token.h"

#include <csignal>

namespace sondrel::cli {

class InterruptScope {
public:
    /// Routes SIGINT to `cancel` until destroyed; the previous handler comes back then.
    explicit InterruptScope(CancelToken& cancel) {
        current() = &cancel;
        m_previous = std::signal(SIGINT, onInterrupt);
    }
    ~InterruptScope() {
        std::signal(SIGINT, m_previous);
        current() = nullptr;
    }
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;

private:
    static CancelToken*& current() {
        static CancelToken* token = nullptr;
        return token;
    }
    static void onInterrupt(int /*signal*/) {
        if (CancelToken* token = current()) {
            token->cancel();
        }
    }

    void (*m_previous)(int) = SIG_DFL;
};

} // namespace sondrel::cli
