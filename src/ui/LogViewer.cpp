#include "ui/LogViewer.h"

#include "base/Language.h"

#include <QFont>
#include <QTextEdit>
#include <QVBoxLayout>

LogViewer::LogViewer(QWidget* parent)
    : QWidget(parent), text(new QTextEdit(this))
{
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setAccessibleName(pickLang("ログ", "Log"));
    text->setFont(QFont(QStringLiteral("Consolas"), 9));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text);
}

void LogViewer::append(const QString& line)
{
    text->append(line);
}

void LogViewer::clear()
{
    text->clear();
}
