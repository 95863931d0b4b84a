#include "ui/MainWindow.h"

#include "base/Language.h"
#include "ui/PageParts.h"

#include <QLabel>
#include <QProgressBar>
#include <QTableWidget>
#include <QVBoxLayout>

QWidget* MainWindow::buildVerifyPage()
{
    verifyProgress = new QProgressBar;
    verifyProgress->setObjectName(QStringLiteral("ripProgress"));
    verifyProgress->setRange(0, 100);
    verifyProgress->setValue(0);
    verifyProgress->setFixedHeight(4);

    verifyResult = pageparts::label(pickLang("照合待機中...", "Waiting to verify..."), "verifyResult");
    verifyResult->setAlignment(Qt::AlignCenter);
    verifyDetail = pageparts::label(QString(), "verifyDetail");
    verifyDetail->setAlignment(Qt::AlignCenter);
    verifyDetail->setWordWrap(true);
    auto* verifyBox = new QWidget;
    verifyBox->setObjectName(QStringLiteral("verifyBox"));
    auto* boxLayout = new QVBoxLayout(verifyBox);
    boxLayout->setContentsMargins(24, 24, 24, 24);
    boxLayout->setSpacing(12);
    boxLayout->addWidget(verifyResult);
    boxLayout->addWidget(verifyDetail);

    verifyTable = pageparts::trackTable(
        {QStringLiteral("Track"), QStringLiteral("Title"), QStringLiteral("AccurateRip")}, 52, 120);
    verifyTable->setEditTriggers(QAbstractItemView::NoEditTriggers);

    auto* page = new QWidget;
    auto* layout = pageparts::pageLayout(page, 20);
    layout->addWidget(pageparts::heading(pickLang("AccurateRip ベリファイ", "AccurateRip Verify")));
    layout->addWidget(pageparts::label(
        pickLang("リッピング結果を AccurateRip データベースと照合します。\n"
                 "他のユーザーと同一のデータが取れているか確認します。",
                 "Compares your rip with the AccurateRip database.\n"
                 "Checks that you got the same data as other users."),
        "subLabel"));
    layout->addWidget(verifyProgress);
    layout->addWidget(verifyBox);
    layout->addWidget(verifyTable);
    layout->addStretch();
    return page;
}

void MainWindow::rebuildVerifyTable()
{
    const QString undecided = QStringLiteral("—");
    verifyTable->setRowCount(0);
    for (const TrackInfo& track : disc.tracks)
        pageparts::addTrackRow(verifyTable, pageparts::twoDigits(track.number), pageparts::shownTitle(track),
                               undecided);
    if (!disc.tracks.isEmpty())
        return;
    for (int row = 0; row < trackTable->rowCount(); ++row)
        pageparts::addTrackRow(verifyTable, pageparts::cellText(trackTable, row, 0),
                               pageparts::cellText(trackTable, row, 1), undecided);
}

void MainWindow::startVerify()
{
}
