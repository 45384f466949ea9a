// SPDX-License-Identifier: MIT
#include "app/VideoTexts.h"

#include "app/PictureDescription.h"
#include "desktop/PathText.h"
#include "platform/FatalError.h"
#include "platform/FileURL.h"
#include "probe/FileProbe.h"

#include <QStringList>

namespace tarnwell
{

namespace
{

/// Qt replaces "[*]" in a title by the mark of an unsaved document, and "[*][*]" by "[*]".
QString literalTitle(QString text)
{
    const QString placeholder = QStringLiteral("[*]");
    return text.replace(placeholder, placeholder + placeholder);
}

} // namespace

VideoTexts::VideoTexts(Outlets outlets)
    : m_outlets(std::move(outlets))
{
}

void VideoTexts::setVideo(const FileProbe& probe)
{
    m_name = textOfPath(lastPathComponent(probe.fileFullPath.value_or(std::string())));
    m_facts = factsInWords(probe);
    setOrientation({});
    setTitle();
}

void VideoTexts::setOrientation(const OrientationState& state)
{
    required(m_outlets.posterFrameIMGV).setImageWords(m_name, orientationInWords(state));
    QStringList details{m_facts};
    if (isRotated(state) || isFlipped(state))
        details << orientationInWords(state);
    details.removeAll(QString());
    QLabel& line = required(m_outlets.videoDetails);
    line.setText(details.join(QStringLiteral(" · ")));
    line.show();
}

void VideoTexts::beginProgress()
{
    m_percent = 0;
    setTitle();
}

void VideoTexts::endProgress()
{
    m_percent.reset();
    setTitle();
}

void VideoTexts::setProgress(int percent)
{
    if (!m_percent)
        return;
    m_percent = percent;
    setTitle();
}

void VideoTexts::setTitle()
{
    QString title = QStringLiteral("Tarnwell");
    if (!m_name.isEmpty())
        title.prepend(m_name + QStringLiteral(" — "));
    if (m_percent)
        title.prepend(QStringLiteral("%1% ").arg(*m_percent));
    required(m_outlets.window).setWindowTitle(literalTitle(title));
}

} // namespace tarnwell
