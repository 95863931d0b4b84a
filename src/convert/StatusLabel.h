#pragma once

#include <QLabel>

class QTextLayout;

/// A label for plain text that wraps at blanks, and inside of a word where a line
/// has no room for it, such as a file name without blanks.
class StatusLabel : public QLabel {
    Q_OBJECT
public:
    explicit StatusLabel(QWidget* parent = nullptr);

    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// Breaks the text into lines of the width, in pixels.
    /// @return the height of all lines, in pixels
    qreal layOut(QTextLayout& lines, int width) const;
};
