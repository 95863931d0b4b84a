#include "tour/WizardWalk.h"

#include "ui/MainWindow.h"

#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTextEdit>

using namespace tour;

void WizardWalk::sourceStep()
{
    guide.shoot(QStringLiteral("source"));
    QLineEdit* cueEdit = guide.pathEdit(0);
    guide.chooseFile(guide.buttonBeside(cueEdit), choices.cue, QStringLiteral("cue-dialog"));
    if (QFileInfo(cueEdit->text()) != QFileInfo(choices.cue))
        giveUp(QStringLiteral("the CUE path did not reach its field"));
    QTest::qWait(paintMs);
    guide.shoot(QStringLiteral("source-chosen"));
}

void WizardWalk::outputStep()
{
    QLineEdit* folder = guide.pathEdit(0);
    folder->selectAll();
    QTest::keyClicks(folder, choices.output);
    bool found = false;
    for (auto* radio : guide.page()->findChildren<QAbstractButton*>(QStringLiteral("fmtRadio"))) {
        if (radio->text().startsWith(choices.format, Qt::CaseInsensitive)) {
            // A click in the middle of a wide radio button lies outside of its text.
            QTest::mouseClick(radio, Qt::LeftButton, {}, QPoint(12, radio->height() / 2));
            found = radio->isChecked();
        }
    }
    if (!found)
        giveUp(QStringLiteral("no such format: ") + choices.format);
    QTest::qWait(paintMs);
    guide.shoot(QStringLiteral("output"));
}

void WizardWalk::metadataStep()
{
    if (!QTest::qWaitFor([&] { return guide.button("nextBtn")->isEnabled(); }, lookupLimitMs))
        giveUp(QStringLiteral("the lookup does not end"));
    auto* art = guide.page()->findChild<QPushButton*>(QStringLiteral("browseBtn"));
    if (!art)
        giveUp(QStringLiteral("no button for the cover"));
    guide.chooseFile(art, choices.cover, QStringLiteral("cover-dialog"));
    QTest::qWait(paintMs);
    guide.shoot(QStringLiteral("metadata"));
    auto* table = guide.page()->findChild<QTableWidget*>(QStringLiteral("trackTable"));
    for (int row = 0; table && row < table->rowCount(); ++row)
        say(QStringLiteral("    %1  %2  %3")
                .arg(table->item(row, 0)->text(), table->item(row, 2)->text(), table->item(row, 1)->text()));
}

void WizardWalk::ripStep()
{
    QTest::qWait(paintMs);
    guide.shoot(QStringLiteral("rip-ready"));

    auto* progress = guide.page()->findChild<QProgressBar*>();
    if (!progress)
        giveUp(QStringLiteral("no progress bar"));
    bool halfway = false;
    QObject::connect(progress, &QProgressBar::valueChanged, &guide.window(), [&](int value) {
        if (!halfway && value >= 60 && value < 100) {
            halfway = true;
            guide.shoot(QStringLiteral("rip-running"));
        }
    });

    bool dismissed = false;
    guide.atDialog([&](QWidget* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        if (!box)
            return false;
        guide.shoot(QStringLiteral("rip-complete"));
        say(QStringLiteral("  the result box says: ") + box->text().simplified());
        dismissed = true;
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        return true;
    });
    guide.click(guide.button("ripBtn"));
    auto* nextBtn = guide.button("nextBtn");
    if (!QTest::qWaitFor([&] { return dismissed && nextBtn->isEnabled(); }, ripLimitMs))
        giveUp(QStringLiteral("the rip does not end"));
    QObject::disconnect(progress, &QProgressBar::valueChanged, &guide.window(), nullptr);
    QTest::qWait(paintMs);
    guide.shoot(QStringLiteral("rip-done"));
}

void WizardWalk::printLog() const
{
    const auto* log = guide.window().findChild<QTextEdit*>();
    if (!log)
        giveUp(QStringLiteral("the window has no log"));
    say(QStringLiteral("  the log:"));
    for (const QString& line : log->toPlainText().split(QLatin1Char('\n')))
        say(QStringLiteral("    | ") + line);
}

void WizardWalk::walk()
{
    say(QStringLiteral("  at Source"));
    sourceStep();
    guide.next(QStringLiteral("Output"));
    outputStep();
    guide.next(QStringLiteral("Metadata"));
    metadataStep();
    guide.next(QStringLiteral("RIP"));
    ripStep();
    guide.next(QStringLiteral("Verify"));
    QTest::qWait(paintMs);
    guide.shoot(QStringLiteral("verify"));
    printLog();
    say(QStringLiteral("  walked all five steps, %1 screenshots").arg(guide.shotCount()));
}
