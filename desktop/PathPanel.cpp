// SPDX-License-Identifier: MIT
#include "desktop/PathPanel.h"

#include "desktop/OutputPath.h"
#include "desktop/PathText.h"
#include "desktop/PortalDialogs.h"
#include "platform/Sandbox.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>

namespace tarnwell
{

namespace
{

QString withHomeFolder(const QString& text)
{
    return text.startsWith(QStringLiteral("~/")) ? QDir::homePath() + text.mid(1) : text;
}

} // namespace

PathPanel::PathPanel(QWidget* window, const QString& folder)
    : QFileDialog(window, QString(), folder)
{
    if (folder.isEmpty())
        setDirectory(folder); // QFileDialog's constructor uses the working directory
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

OpenPanel::OpenPanel(QWidget* window, const QString& folder)
    : PathPanel(window, folder)
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

SavePanel::SavePanel(QWidget* window, const QString& folder, const QString& name)
    : PathPanel(window, folder)
    , m_proposedName(name)
{
    setAcceptMode(AcceptSave);
    setFileMode(AnyFile);
    setWindowTitle(tr("Save Video"));
    setNameFilter(tr("MPEG-4 video (*.mp4)"));
    // A native dialog would ask about the name without the extension.
    setOption(DontConfirmOverwrite, !arePortalDialogsUsed());
    const QString proposed = Sandbox::isInside() ? withOutputExtension(name) : name;
    // Without a folder Qt does not pass a relative path to the portal, which uses the name only.
    selectFile(folder.isEmpty() ? u'/' + proposed : proposed);
}

void SavePanel::accept()
{
    if (isNative())
        QFileDialog::accept(); // the choice is examined after the dialog has closed
    else
        acceptTyped(typedPath());
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
    const OutputPath state = examineOutputPath(output);
    if (state == OutputPath::Usable)
        acceptPath(output);
    else if (state == OutputPath::IsFolder)
        showFolder(output);
    else
        showBox(state, output);
}

void SavePanel::showFolder(const QString& path)
{
    setDirectory(path);
    selectFile(m_proposedName);
}

void SavePanel::showBox(OutputPath state, const QString& path)
{
    QMessageBox* box = makeOutputPathBox(state, path, *this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QDialog::finished, this, [this, path](int answer) {
        if (answer == QMessageBox::Yes)
            acceptPath(path);
    });
    box->open();
}

} // namespace tarnwell
