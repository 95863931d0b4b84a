#include "ui/LinkLabel.h"

#include <QFocusEvent>

LinkLabel::LinkLabel(const QString& richText) : QLabel(richText)
{
    setTextFormat(Qt::RichText);
    setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    setOpenExternalLinks(true);
}

bool LinkLabel::focusNextPrevChild(bool next)
{
    // Past the step from link to link within the text, of which there is one.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    return QWidget::focusNextPrevChild(next);
}

void LinkLabel::focusInEvent(QFocusEvent* event)
{
    QLabel::focusInEvent(event);
    QLabel::focusNextPrevChild(true);
}

void LinkLabel::focusOutEvent(QFocusEvent* event)
{
    QLabel::focusOutEvent(event);
    setSelection(0, 0); // the link would stay marked
}
