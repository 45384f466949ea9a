// SPDX-License-Identifier: MIT
#include "platform/NotificationCenter.h"

namespace tarnwell
{

NotificationCenter& NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

NotificationCenter::Observation NotificationCenter::addObserver(std::string name, Handler handler)
{
    auto observer = std::make_shared<const Observer>(Observer{std::move(name), std::move(handler)});
    m_observers.push_back(observer);
    return observer;
}

void NotificationCenter::post(const Notification& notification)
{
    std::erase_if(m_observers, [](const auto& observer) { return observer.expired(); });
    const auto observers = m_observers; // handlers may change the list
    for (const auto& entry : observers) {
        const auto observer = entry.lock();
        if (observer && observer->name == notification.name)
            observer->handler(notification);
    }
}

} // namespace tarnwell
