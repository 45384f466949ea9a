// SPDX-License-Identifier: MIT
#include "desktop/Doorbell.h"

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace tarnwell
{

Doorbell::Doorbell(std::function<void()> answer)
    : m_answer(std::move(answer))
    , m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , m_notifier(QSocketNotifier::Read)
{
    if (!isWorking())
        return;
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { answerRing(); });
    m_notifier.setSocket(m_descriptor);
    m_notifier.setEnabled(true);
}

Doorbell::~Doorbell()
{
    m_notifier.setEnabled(false);
    if (isWorking())
        ::close(m_descriptor);
}

void Doorbell::ring() const
{
    const std::uint64_t once = 1;
    // Interrupted, it is done again. Else it can only fail when more rings wait than 64 bits count, and then
    // the bell rings anyway.
    while (::write(m_descriptor, &once, sizeof once) < 0 && errno == EINTR) { }
}

void Doorbell::answerRing()
{
    std::uint64_t rings = 0;
    [[maybe_unused]] const auto count = ::read(m_descriptor, &rings, sizeof rings);
    m_answer();
}

} // namespace tarnwell
