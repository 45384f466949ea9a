// SPDX-License-Identifier: MIT
#include "platform/NotificationCenter.h"

namespace tarnwell
{

NotificationCenter& NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

NotificationCenter::Observation NotificationCenter::addObserver(
    std::string name, Handler handler, const void* sender)
{
    auto observer = std::make_shared<const Observer>(Observer{std::move(name), std::move(handler), sender});
    m_observers.push_back(observer);
    return observer;
}

void NotificationCenter::post(const Notification& notification)
{
    std::erase_if(m_observers, [](const auto& observer) { return observer.expired(); });
    // A handler may add observers: the ones that were there at the start are called.
    const auto observers = m_observers;
    for (const auto& entry : observers) {
        const auto observer = entry.lock();
        if (!observer || observer->name != notification.name)
            continue;
        if (observer->sender == nullptr || observer->sender == notification.sender)
            observer->handler(notification);
    }
}

} // namespace tarnwell
