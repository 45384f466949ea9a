// SPDX-License-Identifier: MIT
#include "desktop/OutputPath.h"

#include "platform/Sandbox.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace tarnwell
{

namespace
{

QMessageBox* makeBox(const QString& text, QMessageBox::StandardButtons buttons, QWidget& parent)
{
    const QString title = QCoreApplication::translate("SavePanel", "Save Video");
    auto* box = new QMessageBox(QMessageBox::Warning, title, text, buttons, &parent, Qt::Sheet);
    box->setTextFormat(Qt::PlainText);
    return box;
}

} // namespace

QString withOutputExtension(const QString& path)
{
    const QString ending = QStringLiteral(".mp4");
    return path.endsWith(ending, Qt::CaseInsensitive) ? path : path + ending;
}

OutputPath examineOutputPath(const QString& path)
{
    const QFileInfo file(path);
    if (!file.dir().exists())
        return OutputPath::FolderMissing;
    if (file.isDir())
        return OutputPath::IsFolder;
    if (!QFileInfo(file.path()).isWritable())
        return OutputPath::FolderClosed;
    return file.exists() ? OutputPath::Exists : OutputPath::Usable;
}

QMessageBox* makeOutputPathBox(OutputPath state, const QString& path, QWidget& parent)
{
    const QFileInfo file(path);
    if (state == OutputPath::FolderMissing)
        return makeBox(
            QFileDialog::tr("The folder “%1” does not exist.").arg(file.path()), QMessageBox::Ok, parent);
    if (state == OutputPath::FolderClosed && Sandbox::isInside()) // the path is the portal's
        return makeBox(
            QFileDialog::tr("You cannot save files in the chosen folder."), QMessageBox::Ok, parent);
    if (state == OutputPath::FolderClosed)
        return makeBox(QFileDialog::tr("You cannot save files in the folder “%1”.").arg(file.path()),
            QMessageBox::Ok, parent);
    if (state != OutputPath::Exists)
        return nullptr;
    const QString question
        = QFileDialog::tr("“%1” already exists.\nDo you want to replace it?").arg(file.fileName());
    QMessageBox* box = makeBox(question, QMessageBox::Yes | QMessageBox::No, parent);
    box->setDefaultButton(QMessageBox::No);
    return box;
}

} // namespace tarnwell
