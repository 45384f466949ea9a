// SPDX-License-Identifier: MIT
#include "platform/CommitToken.h"

#include <sys/eventfd.h>
#include <unistd.h>

namespace tarnwell
{

CommitToken::CommitToken()
    : m_descriptor(::eventfd(1, EFD_SEMAPHORE | EFD_NONBLOCK | EFD_CLOEXEC))
{
}

CommitToken::~CommitToken()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool CommitToken::take()
{
    eventfd_t value = 0;
    m_isOurs = m_isOurs || m_descriptor < 0 || ::eventfd_read(m_descriptor, &value) == 0;
    return m_isOurs;
}

} // namespace tarnwell
