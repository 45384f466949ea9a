// SPDX-License-Identifier: MIT
#include "desktop/PathPanel.h"

#include "desktop/PathText.h"
#include "platform/Sandbox.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>

namespace tarnwell
{

namespace
{

QString outputExtension()
{
    return QStringLiteral("mp4");
}

QString withOutputExtension(const QString& path)
{
    const QString ending = QLatin1Char('.') + outputExtension();
    return path.endsWith(ending, Qt::CaseInsensitive) ? path : path + ending;
}

QString withHomeFolder(const QString& text)
{
    return text.startsWith(QStringLiteral("~/")) ? QDir::homePath() + text.mid(1) : text;
}

QMessageBox* openBox(QWidget* parent, const QString& text, QMessageBox::StandardButtons buttons)
{
    auto* box
        = new QMessageBox(QMessageBox::Warning, parent->windowTitle(), text, buttons, parent, Qt::Sheet);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
    return box;
}

void sayThatFolderIsMissing(QWidget* panel, const QString& folder)
{
    openBox(panel, QFileDialog::tr("The folder “%1” does not exist.").arg(folder), QMessageBox::Ok);
}

void sayThatFolderIsClosed(QWidget* panel, const QString& folder)
{
    openBox(panel, QFileDialog::tr("You cannot save files in the folder “%1”.").arg(folder), QMessageBox::Ok);
}

} // namespace

PathPanel::PathPanel(QWidget* window)
    : QFileDialog(window)
{
}

std::optional<std::string> PathPanel::chosenPath() const
{
    if (!m_acceptedPath.isEmpty())
        return pathOfText(m_acceptedPath);
    const QStringList files = selectedFiles();
    if (result() != Accepted || files.isEmpty())
        return std::nullopt;
    return pathOfText(files.first());
}

QLineEdit* PathPanel::nameField() const
{
    const QString nameLabel = labelText(FileName);
    for (const QLabel* label : findChildren<QLabel*>()) {
        auto* field = qobject_cast<QLineEdit*>(label->buddy());
        if (field != nullptr && label->text() == nameLabel)
            return field;
    }
    return nullptr;
}

QString PathPanel::typedPath() const
{
    const QLineEdit* field = nameField();
    if (field == nullptr || field->text().isEmpty())
        return {};
    // After a whole path was typed, the selected row can be in another folder than directory().
    const QStringList rows = selectedFiles();
    if (rows.size() == 1 && QFileInfo(rows.first()).fileName() == field->text())
        return rows.first();
    return directory().absoluteFilePath(withHomeFolder(field->text()));
}

void PathPanel::acceptPath(const QString& path)
{
    m_acceptedPath = path;
    done(Accepted);
}

OpenPanel::OpenPanel(QWidget* window)
    : PathPanel(window)
{
    setAcceptMode(AcceptOpen);
    setFileMode(ExistingFile);
    setWindowTitle(tr("Open Video"));
}

void OpenPanel::accept()
{
    const QString path = typedPath();
    if (QFileInfo(path).exists() && !QFileInfo(path).isDir())
        acceptPath(path);
    else
        QFileDialog::accept();
}

SavePanel::SavePanel(QWidget* window, const QString& name)
    : PathPanel(window)
    , m_proposedName(name)
{
    setAcceptMode(AcceptSave);
    setFileMode(AnyFile);
    setWindowTitle(tr("Save Video"));
    setNameFilter(tr("MPEG-4 video (*.mp4)"));
    if (Sandbox::isInside()) {
        selectFile(withOutputExtension(name));
        return; // with a default suffix, selectedFiles() would hide that the chosen name lacks the extension
    }
    setDefaultSuffix(outputExtension());
    selectFile(name);
}

bool SavePanel::isExtensionMissing() const
{
    const auto path = chosenPath();
    return path && textOfPath(*path) != withOutputExtension(textOfPath(*path));
}

void SavePanel::accept()
{
    if (nameField() != nullptr)
        acceptTyped(typedPath());
    else
        acceptNativeChoice();
}

// A native dialog has asked before replacing the selected file, but not about the file whose name results
// from adding the extension.
void SavePanel::acceptNativeChoice()
{
    const QStringList files = selectedFiles();
    const QString output = files.isEmpty() ? QString() : withOutputExtension(files.first());
    // In the sandbox, the portal grants the chosen name only.
    if (files.isEmpty() || output == files.first() || Sandbox::isInside())
        QFileDialog::accept();
    else
        acceptTyped(output);
}

void SavePanel::acceptTyped(const QString& path)
{
    // QFileDialog::accept would add the extension to the name of a folder.
    if (QFileInfo(path).isDir()) {
        showFolder(path);
        return;
    }
    if (path.isEmpty())
        return;
    const QString output = withOutputExtension(path);
    if (!QFileInfo(output).dir().exists())
        sayThatFolderIsMissing(this, QFileInfo(output).path());
    else if (QFileInfo(output).isDir())
        showFolder(output);
    else if (!QFileInfo(QFileInfo(output).path()).isWritable())
        sayThatFolderIsClosed(this, QFileInfo(output).path());
    else if (QFileInfo::exists(output))
        askBeforeReplacing(output);
    else
        acceptPath(output);
}

void SavePanel::showFolder(const QString& path)
{
    setDirectory(path);
    selectFile(m_proposedName);
}

void SavePanel::askBeforeReplacing(const QString& path)
{
    const QString question
        = tr("“%1” already exists.\nDo you want to replace it?").arg(QFileInfo(path).fileName());
    QMessageBox* box = openBox(this, question, QMessageBox::Yes | QMessageBox::No);
    box->setDefaultButton(QMessageBox::No);
    connect(box, &QDialog::finished, this, [this, path](int answer) {
        if (answer == QMessageBox::Yes)
            acceptPath(path);
    });
}

} // namespace tarnwell
