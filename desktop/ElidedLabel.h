// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

namespace tarnwell
{

/// A centred line of plain secondary text. A text wider than the label ends in "…", and the whole text is the
/// tool tip. For assistive tools the whole text is the description; a change of it is not announced.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    /// One line high and as narrow as the ellipsis.
    QSize minimumSizeHint() const override;

    /// The text as it is painted.
    QString shownText() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tarnwell
