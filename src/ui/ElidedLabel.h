#pragma once

#include <QLabel>

/// Plain lines of text, each of which loses its middle where it is wider than
/// the label. Its text does not widen the page that it stands on.
class ElidedLabel : public QLabel {
public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override;
    /// The text as it is shown at the present width.
    QString shownText() const;

protected:
    void paintEvent(QPaintEvent* event) override;
};
