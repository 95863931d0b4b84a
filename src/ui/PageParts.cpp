#include "ui/PageParts.h"

#include "ui/LinkLabel.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
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

void showCover(QLabel* box, const QPixmap& cover)
{
    const qreal ratio = box->devicePixelRatioF();
    QPixmap fitting = cover.scaled(box->size() * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    fitting.setDevicePixelRatio(ratio);
    box->setPixmap(fitting);
}

} // namespace pageparts
