// SPDX-License-Identifier: MIT
#include "desktop/DesktopEntry.h"

#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QStandardPaths>

namespace tarnwell
{

namespace
{

using Entry = QHash<QString, QString>;

/// The keys of the entry's main group; the groups behind it describe additional actions.
Entry readEntry(const QString& path)
{
    Entry entry;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return entry;
    bool isMainGroup = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(QLatin1Char('[')))
            isMainGroup = line == QStringLiteral("[Desktop Entry]");
        else if (isMainGroup && line.contains(QLatin1Char('=')))
            entry.insert(line.section(QLatin1Char('='), 0, 0).trimmed(),
                line.section(QLatin1Char('='), 1).trimmed());
    }
    return entry;
}

bool isApplicationNamed(const Entry& entry, const QString& name)
{
    return entry.value(QStringLiteral("Type")) == QStringLiteral("Application")
        && entry.value(QStringLiteral("Name")) == name
        && entry.value(QStringLiteral("Hidden")) != QStringLiteral("true");
}

} // namespace

QStringList commandOfApplicationNamed(const QString& name, const QUrl& file)
{
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
        QDirIterator entries(folder, {QStringLiteral("*.desktop")}, QDir::Files, QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const Entry entry = readEntry(entries.next());
            if (isApplicationNamed(entry, name))
                return commandOfExecText(entry.value(QStringLiteral("Exec")), file);
        }
    }
    return {};
}

QStringList commandOfExecText(const QString& exec, const QUrl& file)
{
    QStringList command;
    for (const QString& word : QProcess::splitCommand(exec)) {
        if (word == QStringLiteral("%f") || word == QStringLiteral("%F"))
            command.append(file.toLocalFile());
        else if (word == QStringLiteral("%u") || word == QStringLiteral("%U"))
            command.append(QString::fromUtf8(file.toEncoded()));
        else if (!word.startsWith(QLatin1Char('%')))
            command.append(word);
    }
    return command;
}

} // namespace tarnwell
