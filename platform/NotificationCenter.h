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

/// A message to observers. `sender` identifies the object that posts it; nullptr: no object.
struct Notification {
    std::string name;
    const void* sender = nullptr;
    std::map<std::string, std::any> userInfo;
};

/// Delivers notifications to observers by name, within the posting call. Main thread only.
class NotificationCenter
{
public:
    using Handler = std::function<void(const Notification&)>;
    /// Its destruction ends the observation.
    using Observation = std::shared_ptr<const void>;

    /// The instance that the whole program shares.
    static NotificationCenter& defaultCenter();

    /// Observes notifications of this name, from any sender.
    [[nodiscard]] Observation addObserver(std::string name, Handler handler);

    /// Calls the observers of the name in the order in which they were added. Observers that a handler adds
    /// receive the next notification; observers that a handler removes are not called any more.
    void post(const Notification& notification);

private:
    struct Observer {
        std::string name;
        Handler handler;
    };

    std::vector<std::weak_ptr<const Observer>> m_observers;
};

} // namespace tarnwell
