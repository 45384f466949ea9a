// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QString>
#include <QWidget>

namespace tarnwell
{

/// Shows one picture, centred, or an invitation while there is none. A small picture is enlarged, but to at
/// most four logical pixels for a pixel. The accessible description is the invitation, or the name and state
/// that were set for the picture. The Tab key reaches the view, so that screen readers read it.
class ImageView : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString emptyTitle READ emptyTitle WRITE setEmptyTitle)
    Q_PROPERTY(QString emptyHint READ emptyHint WRITE setEmptyHint)

public:
    explicit ImageView(QWidget* parent = nullptr);

    /// A null image restores the empty state.
    void setImage(const QImage& image);

    /// The accessible description of the picture: its file name and its orientation in words.
    void setImageWords(const QString& name, const QString& state);
    QString imageName() const { return m_imageName; }

    /// The image as it was set, not scaled; null in the empty state.
    QImage image() const { return m_image; }

    QString emptyTitle() const { return m_emptyTitle; }
    void setEmptyTitle(const QString& title);

    QString emptyHint() const { return m_emptyHint; }
    void setEmptyHint(const QString& hint);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// Whether the view is highlighted as the target of the current drag.
    bool isHighlighted() const { return m_isHighlighted; }

Q_SIGNALS:
    /// The left mouse button was pressed and released on the view, which shows no picture.
    void emptyViewClicked();

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QFont titleFont() const;
    QSize fittedDeviceSize(QSizeF available) const;
    void refreshScaled(QSize deviceSize);
    void paintPicture(QPainter& painter);
    void paintEmptyState(QPainter& painter) const;
    void paintInvitation(QPainter& painter, const QRect& frame) const;
    void paintHighlight(QPainter& painter) const;
    void setHighlighted(bool highlighted);
    void describe();

    QImage m_image;
    QPixmap m_scaled; // m_image at its size on screen; null until the next paint
    QString m_imageName;
    QString m_imageState;
    QString m_emptyTitle;
    QString m_emptyHint;
    QIcon m_emptySymbol;
    bool m_isHighlighted = false;
    bool m_isPressed = false; // the left button, while the view was empty
};

} // namespace tarnwell
