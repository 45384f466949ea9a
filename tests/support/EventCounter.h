// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QList>
#include <QObject>
#include <QUrl>

namespace tarnwell::test
{

/// Counts the events of one type that an object receives.
class EventCounter : public QObject
{
    Q_OBJECT

public:
    EventCounter(QObject& object, QEvent::Type type);

    int count() const { return m_count; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QEvent::Type m_type;
    int m_count = 0;
};

/// Intercepts, during its lifetime, the URLs for the desktop's default applications.
class UrlCatcher : public QObject
{
    Q_OBJECT

public:
    UrlCatcher();
    ~UrlCatcher() override;

    const QList<QUrl>& urls() const { return m_urls; }

    Q_INVOKABLE void open(const QUrl& url) { m_urls.append(url); }

private:
    QList<QUrl> m_urls;
};

} // namespace tarnwell::test
