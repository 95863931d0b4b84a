#include "ui/LogViewer.h"

#include "base/Language.h"

#include <QFont>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextEdit>
#include <QVBoxLayout>

LogViewer::LogViewer(QWidget* parent) : QWidget(parent), text(new QTextEdit(this))
{
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setAccessibleName(pickLang("ログ", "Log"));
    text->setFont(QFont(QStringLiteral("Consolas"), 9));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text);
    setFocusProxy(text);
}

// Not by QTextEdit::append, which takes a line that looks like markup for markup.
void LogViewer::append(const QString& line)
{
    static const QRegularExpression lineEnds(QStringLiteral("\\r\\n|[\\r\\n\\x{2029}]"));
    QScrollBar* bar = text->verticalScrollBar();
    const bool atEnd = bar->value() >= bar->maximum();
    QTextCursor end(text->document());
    end.movePosition(QTextCursor::End);
    end.beginEditBlock();
    if (!text->document()->isEmpty())
        end.insertBlock();
    end.insertText(QString(line).replace(lineEnds, QString(QChar::LineSeparator)));
    end.endEditBlock();
    if (atEnd)
        bar->setValue(bar->maximum());
}

void LogViewer::clear()
{
    text->clear();
}
