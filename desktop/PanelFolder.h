// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>

namespace tarnwell
{

/// The folder in which the next file panel starts: that of the file that was used last; before the first
/// file, and if that folder is missing, the user's folder of videos, or else the home folder. Never the
/// working directory, which is "/" if the desktop has started the program. In the sandbox, which has no folders
/// of the user, the portal chooses the folder. Kept in memory only.
class PanelFolder
{
public:
    /// `filePath`: absolute, raw bytes. A file granted by the document portal is ignored: it is alone in its
    /// folder, which the portal's panels cannot show.
    void remember(const std::string& filePath);

    /// An absolute path; empty if the portal chooses the folder.
    QString path() const;

private:
    QString m_lastFolder;
};

} // namespace tarnwell
