// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/ActivationToken.h"

#include <QObject>

#include <functional>
#include <optional>
#include <string>

namespace tarnwell
{

/// Keeps one instance of the program per session. The first instance owns a name on the session bus; a later
/// one asks it to show its window and then exits. File managers ask it to open a file. Without a bus every
/// instance is the first. Main thread.
class SingleInstance : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    enum class Role { First, Later };

    /// Receives the activation token of a later instance or of a file manager, and the URI of the file to
    /// open, if there is one.
    using Reopen = std::function<void(const ActivationToken& token, const std::optional<std::string>& uri)>;

    /// `reopen` is called at each start of a later instance and for each request to open files. The caller on
    /// the bus waits until it returns.
    explicit SingleInstance(Reopen reopen);

    /// Acquires the name, or passes `token` to its owner and waits for the reply. If the owner does
    /// not reply within two seconds, this instance is the first.
    Role claim(const ActivationToken& token = {});

public Q_SLOTS:
    // D-Bus methods; names and signatures are those of org.freedesktop.Application.
    void Activate(const QVariantMap& platformData);
    /// Opens the first file; the others are ignored.
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameter, const QVariantMap& platformData);

private:
    Reopen m_reopen;
};

} // namespace tarnwell
