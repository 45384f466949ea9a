// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/OutputPath.h"

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
    /// Starts in `folder`. If that is empty, a portal chooses the folder.
    PathPanel(QWidget* window, const QString& folder);

    /// The chosen path, raw bytes; empty before the panel was accepted.
    std::optional<std::string> chosenPath() const;

    /// Whether the desktop shows its own dialog. Valid after the panel was shown.
    bool isNative() const { return nameField() == nullptr; }

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
    OpenPanel(QWidget* window, const QString& folder);

protected:
    void accept() override;
};

/// Asks for the path of an MP4 file to write. Qt's own dialog adds the extension to a name without it,
/// refuses a folder that cannot be written, and asks before an existing file is replaced. The choice of a
/// native dialog is as the user made it. In the sandbox the proposed name has the extension.
class SavePanel : public PathPanel
{
public:
    SavePanel(QWidget* window, const QString& folder, const QString& name);

protected:
    void accept() override;

private:
    void acceptTyped(const QString& path);
    void showFolder(const QString& path);
    void showBox(OutputPath state, const QString& path);

    QString m_proposedName;
};

} // namespace tarnwell
