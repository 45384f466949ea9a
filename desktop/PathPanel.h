// SPDX-License-Identifier: MIT
#pragma once

#include <QFileDialog>

#include <optional>
#include <string>

class QLineEdit;

namespace tarnwell
{

/// A file dialog for one path. In Qt's own dialog the text of the name field is used as typed: Qt would split
/// it at quotation marks and would not add the extension to a name that holds a dot. The desktop's native
/// dialog has no name field that can be read; its selected file is used.
class PathPanel : public QFileDialog
{
    // No Q_OBJECT in this class and its subclasses: Qt uses the desktop's native dialog only if the class
    // name in the meta-object is QFileDialog.

public:
    explicit PathPanel(QWidget* window);

    /// The chosen path, raw bytes; empty before the panel was accepted.
    std::optional<std::string> chosenPath() const;

    /// The field that the label "File name:" belongs to; null in a native dialog.
    QLineEdit* nameField() const;

protected:
    /// The text of the name field as an absolute path; empty without a name field or with an empty one.
    QString typedPath() const;
    void acceptPath(const QString& path);

private:
    QString m_acceptedPath;
};

/// Asks for one existing file of any type.
class OpenPanel : public PathPanel
{
public:
    explicit OpenPanel(QWidget* window);

protected:
    void accept() override;
};

/// Asks for the path of an MP4 file to write. Adds the extension to a name without it, and asks before an
/// existing file is replaced. In the sandbox it proposes the name with the extension, and accepts a name
/// without it from a native dialog, where the extension cannot be added.
class SavePanel : public PathPanel
{
public:
    SavePanel(QWidget* window, const QString& name);

    /// Whether the chosen name lacks the extension.
    bool isExtensionMissing() const;

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
