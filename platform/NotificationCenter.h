// SPDX-License-Identifier: MIT
#pragma once

#include <any>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tarnwell
{

/// What an observer is told: a name, who says it (nobody in particular: nullptr), and values by key.
struct Notification {
    std::string name;
    const void* sender = nullptr;
    std::map<std::string, std::any> userInfo;
};

/// Carries notifications between parts of the program that do not know each other. Main thread only.
class NotificationCenter
{
public:
    using Handler = std::function<void(const Notification&)>;
    /// Observes for as long as it lives.
    using Observation = std::shared_ptr<const void>;

    /// The centre of the process.
    static NotificationCenter& defaultCenter();

    /// `sender` narrows the observation to one sender; nullptr hears them all.
    [[nodiscard]] Observation addObserver(std::string name, Handler handler, const void* sender = nullptr);

    /// Calls every observer of the name before it returns, in the order in which they were added.
    void post(const Notification& notification);

private:
    struct Observer {
        std::string name;
        Handler handler;
        const void* sender;
    };

    std::vector<std::weak_ptr<const Observer>> m_observers;
};

} // namespace tarnwell
