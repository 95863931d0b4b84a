#include "ui/PageArea.h"

#include <QEvent>
#include <QLayout>
#include <QScrollBar>

PageArea::PageArea(QWidget* page)
{
    setFrameShape(QFrame::NoFrame);
    setWidget(page);
    // Its fields are what Tab goes through; a stop at the area itself is seen nowhere.
    setFocusPolicy(Qt::NoFocus);
    page->installEventFilter(this);
}

void PageArea::resizeEvent(QResizeEvent* event)
{
    QScrollArea::resizeEvent(event);
    fitPage();
}

bool PageArea::eventFilter(QObject* watched, QEvent* event)
{
    const bool passedOn = QScrollArea::eventFilter(watched, event);
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        fitPage();
    return passedOn;
}

void PageArea::fitPage()
{
    const QLayout* layout = widget()->layout();
    const QSize room = maximumViewportSize();
    const auto leastHeight = [layout](int width) {
        return layout->hasHeightForWidth() ? layout->minimumHeightForWidth(width)
                                           : layout->minimumSize().height();
    };
    const int leastWidth = layout->minimumSize().width();
    QSize fitting(qMax(room.width(), leastWidth), 0);
    fitting.setHeight(leastHeight(fitting.width()));
    if (fitting.height() > room.height()) {
        fitting.setWidth(qMax(room.width() - verticalScrollBar()->sizeHint().width(), leastWidth));
        fitting.setHeight(leastHeight(fitting.width()));
    }
    widget()->resize(fitting.width(), qMax(fitting.height(), room.height()));
}
