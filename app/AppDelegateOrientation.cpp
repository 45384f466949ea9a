// SPDX-License-Identifier: MIT
// Orientation: each change redraws the preview from currentImage; reset shows currentImage itself.
#include "app/AppDelegate.h"
#include "orientation/Picture.h"
#include "platform/FatalError.h"

namespace tarnwell
{

void AppDelegate::leftRotateBTNClicked()
{
    m_orientation.positionState = positionAfterRotatingLeft(m_orientation.positionState);
    updatePreview();
}

void AppDelegate::rightRotateBTNClicked()
{
    m_orientation.positionState = positionAfterRotatingRight(m_orientation.positionState);
    updatePreview();
}

void AppDelegate::vFlip()
{
    m_orientation.vFlipState = !m_orientation.vFlipState;
    updatePreview();
}

void AppDelegate::hFlip()
{
    m_orientation.hFlipState = !m_orientation.hFlipState;
    updatePreview();
}

void AppDelegate::resetBTNClicked()
{
    m_orientation = {};
    required(m_outlets.posterFrameIMGV).setImage(currentImage.value_or(QImage()));
    m_texts.setOrientation(m_orientation);
}

void AppDelegate::updatePreview()
{
    ImageView& view = required(m_outlets.posterFrameIMGV);
    const auto angle = static_cast<double>(angleOfPosition(m_orientation.positionState));
    view.setImage(rotateImage(required(currentImage), angle));
    view.setImage(flipImage(view.image(), m_orientation.hFlipState, m_orientation.vFlipState));
    m_texts.setOrientation(m_orientation);
}

} // namespace tarnwell
