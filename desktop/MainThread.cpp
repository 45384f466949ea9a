// SPDX-License-Identifier: MIT
#include "desktop/MainThread.h"

namespace tarnwell
{

MainThread::MainThread()
    : m_doorbell([this] { m_queue->drain(); })
    , m_queue(std::make_shared<DispatchQueue>([this] { m_doorbell.ring(); }))
{
}

MainThread::~MainThread()
{
    m_queue->close();
}

} // namespace tarnwell
