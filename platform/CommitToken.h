// SPDX-License-Identifier: MIT
#pragma once

namespace tarnwell
{

/// Decides whether a run is cancelled or committed. The application and the encoder each call take: the
/// application before it counts a click on Cancel, the encoder before the step that cannot be undone. Only
/// the first one succeeds, so that an older file is never replaced by a run whose output is then deleted.
class CommitToken
{
public:
    CommitToken();
    ~CommitToken();
    CommitToken(const CommitToken&) = delete;
    CommitToken& operator=(const CommitToken&) = delete;

    /// The name of the environment variable that holds the descriptor for the encoder.
    static constexpr const char* variable = "TARNWELL_COMMIT_TOKEN";

    /// An eventfd in semaphore mode with the value 1: a successful read takes the token. -1 if the system
    /// refused to create it.
    int descriptor() const { return m_descriptor; }

    /// Whether this process has the token. True if the system refused to create it: no encoder can take it.
    bool take();

private:
    int m_descriptor = -1;
    bool m_isOurs = false;
};

} // namespace tarnwell
