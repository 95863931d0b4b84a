#include "ui/VerifyPage.h"

#include "base/Language.h"
#include "disc/DiscModel.h"
#include "rip/OutputNaming.h"
#include "ui/Background.h"
#include "ui/ColouredCells.h"
#include "ui/PageParts.h"
#include "ui/RipLog.h"
#include "ui/TrackTable.h"
#include "verify/AccurateRipDatabase.h"

#include <QLabel>
#include <QProgressBar>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int resultColumn = 2;

QString undecided()
{
    return QStringLiteral("—");
}

void setResultColumn(QTableWidget* table, const QString& text)
{
    for (int row = 0; row < table->rowCount(); ++row)
        table->item(row, resultColumn)->setText(text);
}

VerifyResult fetchVerification(const DiscToc& disc)
{
    VerifyResult result;
    result.ok = accurateRipVerify(disc, result.tracks, result.error, &result.networkError);
    return result;
}

/// How one track's verdict reads.
struct TrackText {
    QString column;
    QString log;
    const char* colour;
};

TrackText textOf(const ArTrackVerdict& verdict)
{
    if (!verdict.inDatabase)
        return {pickLang("—  未登録", "—  Not found"), QStringLiteral("not in database"), "#8a8f98"};
    if (!verdict.matched)
        return {pickLang("◈  不一致", "◈  Mismatch"), QStringLiteral("** MISMATCH **"), "#ff8c42"};
    return {pickLang("✦  一致 (%1)", "✦  Match (%1)").arg(verdict.confidence),
            QStringLiteral("accurately ripped (confidence %1)").arg(verdict.confidence), "#4db8ff"};
}

/// How the disc's verdict reads.
struct DiscText {
    QString label;
    QString detail;
};

DiscText textOf(int matched, qsizetype audioTracks, int lowestConfidence)
{
    if (matched >= 1 && matched == audioTracks)
        return {pickLang("✦  一致  — 信頼度 %1", "✦  Match  — Confidence %1").arg(lowestConfidence),
                pickLang("AccurateRip DB と完全一致しました。\nこのリッピングデータは信頼できます。",
                         "Exact match with the AccurateRip database.\nThis rip is accurate.")};
    if (matched >= 1)
        return {pickLang("◈  一部不一致", "◈  Partial mismatch"),
                pickLang("一部のトラックがAccurateRip "
                         "DBと一致しませんでした。\n傷やドライブの問題の可能性があります。",
                         "Some tracks did not match the AccurateRip database.\n"
                         "The disc may be scratched or the drive may have a problem.")};
    return {pickLang("—  未登録/不一致", "—  Not found / Mismatch"),
            pickLang("このプレスはAccurateRipデータベースに登録されていないか、\n"
                     "いずれのトラックも一致しませんでした。\n"
                     "傷の無いCDで全曲が不一致の場合は、Settingsの「Sample offset」が\n"
                     "ドライブに合っていない可能性があります。",
                     "This pressing is not in the AccurateRip database,\n"
                     "or none of the tracks matched.\n"
                     "If every track of an undamaged disc mismatches, the \"Sample offset\"\n"
                     "in Settings may not match your drive.")};
}

} // namespace

VerifyPage::VerifyPage(QWidget* parent) : QWidget(parent)
{
    verifyProgress = new QProgressBar;
    verifyProgress->setObjectName(QStringLiteral("ripProgress"));
    verifyProgress->setRange(0, 100);
    verifyProgress->setValue(0);
    verifyProgress->setFixedHeight(4);
    verifyProgress->setAccessibleName(pickLang("照合の進行状況", "Progress of the verification"));

    verifyTable = tracktable::make(
        {QStringLiteral("Track"), QStringLiteral("Title"), QStringLiteral("AccurateRip")}, 52, 120);
    verifyTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    verifyTable->setAccessibleName(pickLang("トラックごとの照合結果", "Verdict of each track"));
    verifyTable->setItemDelegateForColumn(resultColumn, new ColouredCells(verifyTable));

    auto* layout = pageparts::pageLayout(this, 20);
    layout->addWidget(pageparts::heading(pickLang("AccurateRip ベリファイ", "AccurateRip Verify")));
    layout->addWidget(pageparts::label(pickLang("リッピング結果を AccurateRip データベースと照合します。\n"
                                                "他のユーザーと同一のデータが取れているか確認します。",
                                                "Compares your rip with the AccurateRip database.\n"
                                                "Checks that you got the same data as other users."),
                                       "subLabel"));
    layout->addWidget(verifyProgress);
    layout->addWidget(buildVerdictBox());
    layout->addWidget(verifyTable);
    layout->addStretch();
}

QWidget* VerifyPage::buildVerdictBox()
{
    verifyResult = pageparts::label(pickLang("照合待機中...", "Waiting to verify..."), "verifyResult");
    verifyResult->setAlignment(Qt::AlignCenter);
    verifyDetail = pageparts::label(QString(), "verifyDetail");
    verifyDetail->setAlignment(Qt::AlignCenter);
    verifyDetail->setWordWrap(true);
    auto* box = new QWidget;
    box->setObjectName(QStringLiteral("verifyBox"));
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(12);
    layout->addWidget(verifyResult);
    layout->addWidget(verifyDetail);
    return box;
}

void VerifyPage::showTracks(const QList<TrackRow>& rows)
{
    verifyTable->setRowCount(0);
    for (const TrackRow& row : rows)
        tracktable::addRow(verifyTable, row, undecided());
}

/// What a verification was started on; the window may hold another disc when it
/// ends.
struct VerifyPage::Verification {
    DiscToc disc;
    QHash<int, std::pair<quint32, quint32>> crcs;
    QString discId;
};

void VerifyPage::start(const DiscToc& disc)
{
    verifyResult->setText(pickLang("照合中...", "Verifying..."));
    verifyDetail->setText(
        pickLang("AccurateRip データベースに問い合わせています", "Querying the AccurateRip database"));
    verifyProgress->setValue(15);
    setResultColumn(verifyTable, undecided());

    runInBackground(
        this, [disc] { return fetchVerification(disc); },
        [this, started = Verification{disc, ripCrcs, accurateRipDiscId(disc)}](const VerifyResult& result) {
            finish(started, result);
        });
}

void VerifyPage::finish(const Verification& started, const VerifyResult& result)
{
    verifyProgress->setValue(100);
    if (result.ok)
        showVerdict(started, result);
    else
        showNoVerdict(started, result);
    Q_EMIT logLine(riplog::doubleRule());
}

void VerifyPage::showVerdict(const Verification& started, const VerifyResult& result)
{
    QStringList lines;
    int matched = 0;
    int lowest = -1;
    const auto& tracks = started.disc.tracks;
    for (int row = 0; row < std::min<qsizetype>(tracks.size(), verifyTable->rowCount()); ++row) {
        QTableWidgetItem* cell = verifyTable->item(row, resultColumn);
        if (tracks[row].isData) {
            cell->setText(pickLang("—  データ", "—  Data"));
            continue;
        }
        const auto [crcV1, crcV2] = started.crcs.value(tracks[row].number);
        // By the row, not by the place among the audio tracks.
        const ArTrackVerdict verdict = accurateRipMatch(crcV1, crcV2, result.tracks.value(row));
        const TrackText text = textOf(verdict);
        cell->setText(text.column);
        cell->setForeground(QColor(text.colour));
        lines << QStringLiteral("  Track %1  [%2]  %3")
                     .arg(twoDigits(tracks[row].number),
                          QStringLiteral("%1").arg(crcV2, 8, 16, QChar(u'0')).toUpper(), text.log);
        if (verdict.inDatabase && verdict.matched) {
            ++matched;
            lowest = lowest < 0 ? verdict.confidence : std::min(lowest, verdict.confidence);
        }
    }
    const auto audioTracks =
        std::count_if(tracks.cbegin(), tracks.cend(), [](const TrackInfo& track) { return !track.isData; });
    const DiscText text = textOf(matched, audioTracks, lowest);
    verifyResult->setText(text.label);
    verifyDetail->setText(text.detail);

    Q_EMIT logLine(QString());
    Q_EMIT logLine(QStringLiteral("─── AccurateRip (v2 CRC) ───────────"));
    Q_EMIT logLine(QStringLiteral("  Disc ID : ") + started.discId);
    for (const QString& line : std::as_const(lines))
        Q_EMIT logLine(line);
    Q_EMIT logLine(QStringLiteral("  %1 / %2 tracks accurately ripped").arg(matched).arg(audioTracks));
}

void VerifyPage::showNoVerdict(const Verification& started, const VerifyResult& result)
{
    verifyResult->setText(result.networkError ? pickLang("—  照合できませんでした", "—  Could not verify")
                                              : pickLang("—  未登録", "—  Not found"));
    verifyDetail->setText(result.error);
    setResultColumn(verifyTable, result.networkError ? pickLang("—  未照合", "—  Not verified")
                                                     : pickLang("—  未登録", "—  Not found"));
    Q_EMIT logLine(QString());
    Q_EMIT logLine(QStringLiteral("─── AccurateRip ────────────────────"));
    Q_EMIT logLine(QStringLiteral("  Disc ID : ") + started.discId);
    Q_EMIT logLine(result.networkError ? QStringLiteral("  Could not connect to the AccurateRip server")
                                       : QStringLiteral("  Not in database"));
}
