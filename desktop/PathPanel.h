// SPDX-License-Identifier: MIT
#pragma once

#include <QFileDialog>

#include <optional>
#include <string>

namespace tarnwell
{

/// A file dialog whose answer is one path, taken as it was typed: Qt's own reading splits a name at quotation
/// marks and leaves a name with any dot in it without the extension. A desktop's native dialog answers for
/// itself.
class PathPanel : public QFileDialog
{
    // No Q_OBJECT here and below: Qt gives up a desktop's native dialog for any class that bears another
    // name.

public:
    explicit PathPanel(QWidget* window);

    /// The path that was chosen, raw bytes; nothing before the panel was accepted.
    std::optional<std::string> chosenPath() const;

protected:
    /// What stands in the name field as an absolute path; empty where the dialog has no such field.
    QString typedPath() const;
    /// Whether it is Qt's own dialog, whose name field can be read.
    bool hasNameField() const;
    void acceptPath(const QString& path);

private:
    QString m_acceptedPath;
};

/// Picks one existing file of any type.
class OpenPanel : public PathPanel
{
public:
    explicit OpenPanel(QWidget* window);

protected:
    void accept() override;
};

/// Picks the place of a new MP4 file and asks before one is replaced.
class SavePanel : public PathPanel
{
public:
    SavePanel(QWidget* window, const QString& name);

protected:
    void accept() override;

private:
    void acceptNativeChoice();
    void acceptTyped(const QString& path);
    void askBeforeReplacing(const QString& path);
    void showFolder(const QString& path);

    QString m_proposedName;
};

} // namespace tarnwell
