// SPDX-License-Identifier: MIT
#include "app/Alerts.h"

#include "app/SheetTitles.h"
#include "app/SupportAddress.h"
#include "desktop/PathText.h"

namespace tarnwell
{

namespace
{

Alert warning(const QString& title, const std::string& messageText, const std::string& informativeText)
{
    Alert alert;
    alert.setTitle(title);
    alert.setMessageText(textOf(messageText));
    alert.setInformativeText(textOf(informativeText));
    alert.addButton(QStringLiteral("OK"));
    return alert;
}

} // namespace

Alert refusalAlert(const std::string& messageText, const std::string& informativeText)
{
    return warning(openingTitle(), messageText, informativeText);
}

Alert modeAlert()
{
    Alert alert;
    alert.setTitle(savingTitle());
    alert.setMessageText(QStringLiteral("Fix Flag mode Available!"));
    alert.setInformativeText(QStringLiteral(
        "\nFix Flag (Quick): Only the orientation flag (rotation tag) in the metadata of the video "
        "file is changed, so that the video plays fine in iOS, QuickTime & VLC video players without "
        "any need for transcoding which saves a tremendous amount of encoding time for longer "
        "videos.\n\nTranscode (Slow) : The video is rotated permanently frame by frame by re-encoding "
        "which is compatible with all video players.\n\n"));
    alert.addButton(QStringLiteral("Fix Flag"));
    alert.addButton(QStringLiteral("Transcode"));
    alert.setStyle(Alert::Style::Warning);
    return alert;
}

Alert sameFileAlert()
{
    Alert alert;
    alert.setTitle(savingTitle());
    alert.setStyle(Alert::Style::Informational);
    alert.setMessageText(QStringLiteral("Input file name is same as the output file name!"));
    alert.setInformativeText(QStringLiteral("Please specify a different file to save."));
    return alert;
}

Alert changedInputAlert()
{
    return warning(savingTitle(), "Seems like something went wrong!",
        "The video has changed since it was opened. Please open it again.");
}

Alert failedDropAlert()
{
    return refusalAlert("Seems like something went wrong!",
        "The desktop did not pass on the dropped file. Please drop it again or open it with File ▸ Open.");
}

Alert failedOpenAlert()
{
    return refusalAlert("Seems like something went wrong!",
        "The desktop did not pass on the file. Please open it with File ▸ Open.");
}

Alert failureAlert()
{
    return warning(savingTitle(), "Seems like something went wrong!", "Contact : " + supportAddress());
}

Alert successAlert(const OrientationState& state)
{
    Alert alert;
    alert.setTitle(savingTitle());
    alert.setMessageText(textOf("Video " + orientationLabel(state) + " Successfully!"));
    alert.addButton(QStringLiteral("OK"));
    alert.addButton(QStringLiteral("Show in Finder"));
    alert.addButton(QStringLiteral("Launch Video in QuickTime"));
    alert.setInformativeText(textOf("Questions? : " + supportAddress()));
    alert.setStyle(Alert::Style::Informational);
    return alert;
}

} // namespace tarnwell
