#include "ui/PageParts.h"

#include "disc/DiscModel.h"
#include "ui/LinkLabel.h"

#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace pageparts {

QLabel* label(const QString& text, const char* objectName)
{
    auto* made = new QLabel(text);
    made->setObjectName(QLatin1String(objectName));
    made->setTextFormat(Qt::PlainText);
    return made;
}

QLabel* linkLabel(const QString& text, const QString& address, const QString& linkText)
{
    return new LinkLabel(
        text.arg(QStringLiteral("<a href=\"%1\" style=\"color: #4db8ff;\">%2</a>").arg(address, linkText)));
}

QFrame* line()
{
    auto* made = new QFrame;
    made->setFrameShape(QFrame::HLine);
    made->setObjectName(QStringLiteral("hline"));
    return made;
}

QLabel* heading(const QString& text)
{
    return label(text, "stepHeading");
}

QLineEdit* lineEdit(const char* objectName, const QString& placeholder)
{
    auto* made = new QLineEdit;
    made->setObjectName(QLatin1String(objectName));
    made->setPlaceholderText(placeholder);
    return made;
}

QPushButton* button(const QString& text, const char* objectName)
{
    auto* made = new QPushButton(text);
    made->setObjectName(QLatin1String(objectName));
    return made;
}

QGroupBox* group(const QString& title, QBoxLayout* content)
{
    auto* made = new QGroupBox(title);
    made->setObjectName(QStringLiteral("sourceGroup"));
    // The style sheet's padding stands around this; the top keeps clear of the title.
    content->setContentsMargins(4, 8, 4, 2);
    made->setLayout(content);
    return made;
}

QVBoxLayout* pageLayout(QWidget* page, int spacing)
{
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(40, 32, 40, 32);
    layout->setSpacing(spacing);
    return layout;
}

QTableWidget* trackTable(const QStringList& headers, int firstWidth, int lastWidth)
{
    auto* table = new QTableWidget(0, static_cast<int>(headers.size()));
    table->setObjectName(QStringLiteral("trackTable"));
    table->setHorizontalHeaderLabels(headers);
    table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    table->setColumnWidth(0, firstWidth);
    table->setColumnWidth(2, lastWidth);
    table->verticalHeader()->setVisible(false);
    // Tab goes on to the next field; the arrow keys move between cells.
    table->setTabKeyNavigation(false);
    return table;
}

void addTrackRow(QTableWidget* table, const QString& number, const QString& title, const QString& last)
{
    const int row = table->rowCount();
    table->insertRow(row);
    table->setRowHeight(row, 26);
    int column = 0;
    for (const QString& text : {number, title, last})
        table->setItem(row, column++, new QTableWidgetItem(text));
}

QString cellText(const QTableWidget* table, int row, int column)
{
    const QTableWidgetItem* item = table->item(row, column);
    return item ? item->text() : QString();
}

QString twoDigits(int number)
{
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

QString playingTime(int seconds)
{
    return QStringLiteral("%1:%2").arg(QString::number(seconds / 60), twoDigits(seconds % 60));
}

QString shownTitle(const TrackInfo& track)
{
    return track.title.isEmpty() ? QStringLiteral("Track %1").arg(track.number) : track.title;
}

void showCover(QLabel* box, const QPixmap& cover)
{
    const qreal ratio = box->devicePixelRatioF();
    QPixmap fitting = cover.scaled(box->size() * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    fitting.setDevicePixelRatio(ratio);
    box->setPixmap(fitting);
}

} // namespace pageparts
