#include "ui/StatCards.h"

#include "ui/PageParts.h"
#include "ui/RipCounters.h"

#include <QGridLayout>
#include <QLabel>

namespace {

constexpr double singleSpeedKBs = 150.0;

QString unknown()
{
    return QStringLiteral("—");
}

} // namespace

StatCards::StatCards()
    : grid(new QGridLayout), quality(addCard(0, 0, QStringLiteral("Read Quality"))),
      suspects(addCard(0, 1, QStringLiteral("Suspect Sectors"))),
      errors(addCard(1, 0, QStringLiteral("Errors"))), speedText(addCard(1, 1, QStringLiteral("Speed")))
{
    grid->setSpacing(6);
    clear();
    errors->setText(unknown()); // a count only once a rip or a reset has been
}

QLabel* StatCards::addCard(int row, int column, const QString& title)
{
    auto* card = new QWidget;
    card->setObjectName(QStringLiteral("statCard"));
    auto* content = new QVBoxLayout(card);
    content->setContentsMargins(10, 8, 10, 8);
    content->setSpacing(2);
    auto* valueLabel = pageparts::label(QString(), "statValue");
    content->addWidget(pageparts::label(title, "statLabel"));
    content->addWidget(valueLabel);
    grid->addWidget(card, row, column);
    return valueLabel;
}

void StatCards::showQuality(const RipCounters& counters)
{
    quality->setText(counters.readQualityText() + QLatin1Char('%'));
}

void StatCards::show(const RipCounters& counters, unsigned speed)
{
    showQuality(counters);
    suspects->setText(QString::number(counters.suspects));
    errors->setText(QString::number(counters.errors));
    speedText->setText(speed > 0 ? QString::number(speed / singleSpeedKBs, 'f', 1) + QLatin1Char('x')
                                 : unknown());
}

void StatCards::clear()
{
    show({}, 0);
    quality->setText(unknown());
}
