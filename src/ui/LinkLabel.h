#pragma once

#include <QLabel>

/// A text with a link in it that opens in the browser, by mouse or keyboard. The
/// focus is at the link as soon as it is at the label, where a plain label has
/// a stop in front of its link that nothing shows.
class LinkLabel : public QLabel {
public:
    explicit LinkLabel(const QString& richText);

protected:
    /// On to the next widget: there is one link, and it has the focus already.
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};
