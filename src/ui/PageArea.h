#pragma once

#include <QScrollArea>

/// Holds a page of the wizard and scrolls only when the window is smaller than
/// the least that the page needs. A scroll area by itself goes by the height
/// that the page would like to have, once a label on it wraps its text.
class PageArea : public QScrollArea {
public:
    explicit PageArea(QWidget* page);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fitPage();
};
