// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/ActivationToken.h"

#include <QObject>

#include <functional>

namespace tarnwell
{

/// Keeps one instance of the program per session. The first one owns a name on the session bus; a later one
/// asks it to come forward and has nothing else to do. Without a bus every instance is the first. Main
/// thread.
class SingleInstance : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    enum class Role { First, Later };

    /// Receives what a later start carries that lets a window come forward.
    using Reopen = std::function<void(const ActivationToken& token)>;

    /// `reopen` is called whenever a later instance was started.
    explicit SingleInstance(Reopen reopen);

    /// Takes the name, or asks its owner to come forward and waits until that has answered. The owner gets
    /// the token that this instance was started with.
    Role claim(const ActivationToken& token = {});

public Q_SLOTS:
    // The calls that the bus carries; the names and signatures are the interface's.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameter, const QVariantMap& platformData);

private:
    Reopen m_reopen;
};

} // namespace tarnwell
