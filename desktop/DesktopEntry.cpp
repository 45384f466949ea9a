// SPDX-License-Identifier: MIT
#include "desktop/DesktopEntry.h"

#include <QDirIterator>
#include <QFile>
#include <QHash>
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
            entry.insert(
                line.section(QLatin1Char('='), 0, 0).trimmed(), line.section(QLatin1Char('='), 1).trimmed());
    }
    return entry;
}

bool isApplicationNamed(const Entry& entry, const QString& name)
{
    return entry.value(QStringLiteral("Type")) == QStringLiteral("Application")
        && entry.value(QStringLiteral("Name")) == name
        && entry.value(QStringLiteral("Hidden")) != QStringLiteral("true");
}

/// Blanks part words, but not within quotation marks, where a backslash takes its follower literally.
QStringList wordsOf(const QString& exec)
{
    QStringList words;
    bool isWord = false;
    bool isQuoted = false;
    for (qsizetype place = 0; place < exec.size(); ++place) {
        QChar letter = exec.at(place);
        const bool isMark = letter == QLatin1Char('"');
        if (isMark)
            isQuoted = !isQuoted;
        if (!isQuoted && letter.isSpace()) {
            isWord = false;
            continue;
        }
        if (!isWord)
            words.append(QString());
        isWord = true;
        if (isMark)
            continue;
        if (isQuoted && letter == QLatin1Char('\\') && place + 1 < exec.size())
            letter = exec.at(++place);
        words.last().append(letter);
    }
    return words;
}

/// The word with its field codes filled in: a file as path or address, a percent sign, nothing for all
/// others.
QString withFile(const QString& word, const QUrl& file)
{
    QString filled;
    for (qsizetype place = 0; place < word.size(); ++place) {
        if (word.at(place) != QLatin1Char('%') || place + 1 == word.size()) {
            filled.append(word.at(place));
            continue;
        }
        const char code = word.at(++place).toLower().toLatin1();
        if (code == 'f')
            filled.append(file.toLocalFile());
        else if (code == 'u')
            filled.append(QString::fromUtf8(file.toEncoded()));
        else if (code == '%')
            filled.append(QLatin1Char('%'));
    }
    return filled;
}

} // namespace

QStringList commandOfApplicationNamed(const QString& name, const QUrl& file)
{
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
        QDirIterator entries(
            folder, {QStringLiteral("*.desktop")}, QDir::Files, QDirIterator::Subdirectories);
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
    for (const QString& word : wordsOf(exec)) {
        const QString filled = withFile(word, file);
        // A word that was nothing but codes for something else is left out.
        if (!filled.isEmpty() || word.isEmpty())
            command.append(filled);
    }
    return command;
}

} // namespace tarnwell
