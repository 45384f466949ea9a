// SPDX-License-Identifier: MIT
#include "desktop/ImageView.h"

#include "desktop/PaletteColour.h"
#include "desktop/SymbolIcon.h"

#include <QAccessibleWidget>
#include <QEvent>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QPen>
#include <QStyleOptionFocusRect>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarnwell
{

namespace
{

constexpr QSize preferredSize{640, 400};
constexpr QSize smallestPictureArea{160, 120};
constexpr int pictureMargin = 16;
constexpr int largestEnlargement = 4; // of the picture's size in pixels, to logical pixels
constexpr int frameMargin = 24;
constexpr qreal frameCornerRadius = 12;
constexpr qreal frameLineWidth = 2;
constexpr qreal highlightLineWidth = 4;
constexpr int highlightAlpha = 48; // of 255
constexpr int symbolSide = 80;
constexpr int symbolGap = 4;
constexpr int textGap = 6;
constexpr int textMargin = 16;
constexpr qreal titleFontScale = 1.35;

// Shares of the text colour laid over the window colour.
constexpr qreal surroundStrength = 0.05;
constexpr qreal frameStrength = 0.32;
constexpr qreal symbolStrength = 0.45;

/// A view of the same pixels, without a copy, that skips lines: it keeps at least two for each line of the
/// target height. Scaling a large picture from all of its lines is slower and looks the same.
QImage everyOtherLine(const QImage& picture, int targetHeight)
{
    const int step = std::max(1, picture.height() / std::max(1, targetHeight) / 2);
    if (step == 1 || picture.colorCount() > 0) // the view has no colour table
        return picture;
    return QImage(picture.constBits(), picture.width(), picture.height() / step,
        picture.bytesPerLine() * step, picture.format());
}

int wrappedHeight(const QFont& font, int width, const QString& text)
{
    const QRect unlimited(0, 0, width, QWIDGETSIZE_MAX);
    return text.isEmpty() ? 0 : QFontMetrics(font).boundingRect(unlimited, Qt::TextWordWrap, text).height();
}

void drawCentred(
    QPainter& painter, const QRect& rect, const QFont& font, const QColor& colour, const QString& text)
{
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(rect, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, text);
}

// Qt's accessible role of a custom widget is a container.
QAccessibleInterface* accessToImageView(const QString& className, QObject* object)
{
    auto* view
        = className == QLatin1String("tarnwell::ImageView") ? qobject_cast<ImageView*>(object) : nullptr;
    return view != nullptr ? new QAccessibleWidget(view, QAccessible::Graphic) : nullptr;
}

} // namespace

ImageView::ImageView(QWidget* parent)
    : QWidget(parent)
    , m_emptySymbol(symbolIcon(QStringLiteral(":/symbols/video.svg")))
{
    QAccessible::installFactory(accessToImageView); // Qt ignores a second installation
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMouseTracking(true);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor); // a click on the empty view is a command
}

void ImageView::setImage(const QImage& image)
{
    m_image = image;
    m_scaled = QPixmap();
    const auto shape = m_image.isNull() ? Qt::PointingHandCursor : Qt::ArrowCursor;
    if (cursor().shape() != shape)
        setCursor(shape);
    describe();
    update();
}

void ImageView::setImageWords(const QString& name, const QString& state)
{
    m_imageName = name;
    m_imageState = state;
    describe();
}

void ImageView::describe()
{
    QStringList words
        = m_image.isNull() ? QStringList{m_emptyTitle, m_emptyHint} : QStringList{m_imageName, m_imageState};
    words.removeAll(QString());
    const QString description = words.join(QStringLiteral(", "));
    if (description != accessibleDescription()) // each change makes a screen reader speak
        setAccessibleDescription(description);
}

void ImageView::setEmptyTitle(const QString& title)
{
    m_emptyTitle = title;
    describe();
    updateGeometry();
    update();
}

void ImageView::setEmptyHint(const QString& hint)
{
    m_emptyHint = hint;
    describe();
    updateGeometry();
    update();
}

QSize ImageView::sizeHint() const
{
    return preferredSize.expandedTo(minimumSizeHint());
}

QSize ImageView::minimumSizeHint() const
{
    const int around = 2 * (frameMargin + textMargin);
    const int textHeight = QFontMetrics(titleFont()).height() + fontMetrics().height();
    const int width = fontMetrics().horizontalAdvance(m_emptyHint);
    const QSize invitation(width + around, symbolSide + symbolGap + textHeight + textGap + around);
    return invitation.expandedTo(smallestPictureArea);
}

bool ImageView::event(QEvent* event)
{
    const bool isTaken = QWidget::event(event);
    switch (event->type()) {
    case QEvent::DragEnter:
        setHighlighted(event->isAccepted());
        break;
    case QEvent::DragLeave:
    case QEvent::Drop:
    case QEvent::MouseMove: // the drag has ended, and not every drag source reports that
        setHighlighted(false);
        break;
    case QEvent::WindowBlocked:
        m_isPressed = false;
        setHighlighted(false);
        break;
    default:
        break;
    }
    return isTaken;
}

void ImageView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        m_isPressed = m_image.isNull();
}

void ImageView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !std::exchange(m_isPressed, false))
        return;
    if (m_image.isNull() && rect().contains(event->position().toPoint()))
        Q_EMIT emptyViewClicked();
}

void ImageView::setHighlighted(bool highlighted)
{
    if (highlighted == m_isHighlighted)
        return;
    m_isHighlighted = highlighted;
    update();
}

void ImageView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), mixedWithWindow(palette(), surroundStrength));
    if (m_image.isNull())
        paintEmptyState(painter);
    else
        paintPicture(painter);
    if (m_isHighlighted)
        paintHighlight(painter);
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void ImageView::paintHighlight(QPainter& painter) const
{
    const QColor colour = palette().color(QPalette::Highlight);
    const int margin = m_image.isNull() ? frameMargin : pictureMargin / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, highlightLineWidth));
    painter.setBrush(QColor(colour.red(), colour.green(), colour.blue(), highlightAlpha));
    painter.drawRoundedRect(
        contentsRect().adjusted(margin, margin, -margin, -margin), frameCornerRadius, frameCornerRadius);
}

QFont ImageView::titleFont() const
{
    QFont larger = font();
    if (larger.pointSizeF() > 0)
        larger.setPointSizeF(larger.pointSizeF() * titleFontScale);
    else
        larger.setPixelSize(qRound(larger.pixelSize() * titleFontScale));
    larger.setWeight(QFont::DemiBold);
    return larger;
}

QSize ImageView::fittedDeviceSize(QSizeF available) const
{
    const QSize room = (available * devicePixelRatioF()).toSize();
    const QSize largest = (QSizeF(m_image.size()) * largestEnlargement * devicePixelRatioF()).toSize();
    if (largest.width() <= room.width() && largest.height() <= room.height())
        return largest;
    // The short side of a very long picture must not become 0.
    return m_image.size().scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

void ImageView::refreshScaled(QSize deviceSize)
{
    if (m_scaled.size() != deviceSize) {
        m_scaled
            = QPixmap::fromImage(everyOtherLine(m_image, deviceSize.height())
                                     .scaled(deviceSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    m_scaled.setDevicePixelRatio(devicePixelRatioF());
}

void ImageView::paintPicture(QPainter& painter)
{
    const QRect area = contentsRect().adjusted(pictureMargin, pictureMargin, -pictureMargin, -pictureMargin);
    if (area.isEmpty())
        return;
    refreshScaled(fittedDeviceSize(area.size()));
    // Aligned to device pixels; half a pixel would blur the picture.
    const qreal ratio = m_scaled.devicePixelRatio();
    const QSizeF spare = QSizeF(area.size()) * ratio - QSizeF(m_scaled.size());
    const QPointF corner = QPointF(area.topLeft()) * ratio + QPointF(spare.width(), spare.height()) / 2;
    painter.drawPixmap(QPointF(std::floor(corner.x()), std::floor(corner.y())) / ratio, m_scaled);
}

void ImageView::paintEmptyState(QPainter& painter) const
{
    const QRect frame = contentsRect().adjusted(frameMargin, frameMargin, -frameMargin, -frameMargin);
    if (frame.isEmpty())
        return;
    QPen pen(mixedWithWindow(palette(), frameStrength), frameLineWidth, Qt::DashLine);
    pen.setCapStyle(Qt::FlatCap);
    painter.setPen(pen);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawRoundedRect(frame, frameCornerRadius, frameCornerRadius);
    paintInvitation(painter, frame.adjusted(textMargin, textMargin, -textMargin, -textMargin));
}

void ImageView::paintInvitation(QPainter& painter, const QRect& frame) const
{
    const QFont large = titleFont();
    const int titleHeight = wrappedHeight(large, frame.width(), m_emptyTitle);
    const int hintHeight = wrappedHeight(font(), frame.width(), m_emptyHint);
    const int total = symbolSide + symbolGap + titleHeight + textGap + hintHeight;
    const QRect symbol(
        frame.center().x() - symbolSide / 2, frame.center().y() - total / 2, symbolSide, symbolSide);
    const QRect title(frame.left(), symbol.bottom() + symbolGap, frame.width(), titleHeight);
    const QRect hint(frame.left(), title.bottom() + textGap, frame.width(), hintHeight);

    painter.setOpacity(symbolStrength);
    m_emptySymbol.paint(&painter, symbol);
    painter.setOpacity(1);
    drawCentred(painter, title, large, palette().color(QPalette::WindowText), m_emptyTitle);
    drawCentred(painter, hint, font(), mixedWithWindow(palette(), secondaryTextShare), m_emptyHint);
}

} // namespace tarnwell
