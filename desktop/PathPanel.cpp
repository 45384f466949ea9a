// SPDX-License-Identifier: MIT
#include "desktop/PathPanel.h"

#include "desktop/PathText.h"

#include <QDir>
#include <QFileInfo>
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

bool PathPanel::hasNameField() const
{
    return findChild<QLineEdit*>(QStringLiteral("fileNameEdit")) != nullptr;
}

QString PathPanel::typedPath() const
{
    const auto* field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (field == nullptr || field->text().isEmpty())
        return {};
    // A row of the list may lie in another folder than the one that is shown, when its whole path was typed.
    const QStringList rows = selectedFiles();
    if (rows.size() == 1 && QFileInfo(rows.first()).fileName() == field->text())
        return rows.first();
    return directory().absoluteFilePath(field->text());
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
    setDefaultSuffix(outputExtension());
    selectFile(name);
}

void SavePanel::accept()
{
    if (!hasNameField()) {
        QFileDialog::accept();
        return;
    }
    const QString path = typedPath();
    // Qt's own reading would add the extension to a folder's name.
    if (QFileInfo(path).isDir()) {
        showFolder(path);
        return;
    }
    if (path.isEmpty() || !QFileInfo(path).dir().exists())
        return;
    const QString output = withOutputExtension(path);
    if (QFileInfo(output).isDir())
        showFolder(output);
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
    auto* box = new QMessageBox(
        QMessageBox::Warning, windowTitle(), question, QMessageBox::Yes | QMessageBox::No, this, Qt::Sheet);
    box->setTextFormat(Qt::PlainText);
    box->setDefaultButton(QMessageBox::No);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QDialog::finished, this, [this, path](int answer) {
        if (answer == QMessageBox::Yes)
            acceptPath(path);
    });
    box->open();
}

} // namespace tarnwell
