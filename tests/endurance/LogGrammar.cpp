#include "endurance/LogGrammar.h"

#include <QRegularExpression>

namespace {

const QString title = QStringLiteral("  TARVEL CD RIPPER  —  RIP START");

// One for each kind of line.
const QRegularExpression& anyLine()
{
    static const QRegularExpression made(
        QStringLiteral("^(")
        + QStringList{
            QString(),
            QStringLiteral("═{39}"),
            title,
            QStringLiteral("  \\d{4}-\\d\\d-\\d\\d  \\d\\d:\\d\\d:\\d\\d"),
            QStringLiteral("(Album |Output|Drive |Source|Format|Folder) : .*"),
            QStringLiteral("Program: .* v\\d.*"),
            QStringLiteral("Read offset : (\\+[1-9]\\d*|0|-[1-9]\\d*)  \\(.*\\)"),
            QStringLiteral("Read mode   : secure - .* re-reads / sector\\)"),
            QStringLiteral("─── (Track log|AccurateRip|AccurateRip \\(v2 CRC\\)) ─+"),
            QStringLiteral("  Track \\d\\d: .+"),
            QStringLiteral("  Track \\d\\d  \\[[0-9A-F]{8}\\]  .+"),
            QStringLiteral("  ⚠ .+"),
            QStringLiteral("  Read Quality : \\d+\\.\\d\\d%"),
            QStringLiteral("  Errors       : \\d+ sectors"),
            QStringLiteral("  Suspect      : \\d+ sectors \\(.*\\)"),
            QStringLiteral("  Result  : .+[✦◈✕]"),
            QStringLiteral("  [*※] .+"),
            QStringLiteral("  Disc ID : dBAR-\\d{3}(-[0-9a-f]{8}){3}"),
            QStringLiteral("  \\d+ / \\d+ tracks accurately ripped"),
            QStringLiteral("  Not in database"),
            QStringLiteral("  Could not connect to the AccurateRip server"),
            QStringLiteral("  Error|  エラー"),
            QStringLiteral("Please select a source before ripping\\."),
            QStringLiteral("選択可能なソースを選択しなければ実行できません。"),
        }.join(u'|')
        + QStringLiteral(")$"));
    return made;
}

bool endsBeforeItBegins(const QStringList& lines)
{
    static const QRegularExpression track(QStringLiteral("^  Track (?!00)\\d\\d: "));
    static const QRegularExpression trackEnd(
        QStringLiteral("^  Track \\d\\d: (✦ saved  \\(errors:\\d+\\)|◈ FAILED)$"));
    qsizetype open = 0;
    for (const QString& line : lines) {
        if (trackEnd.match(line).hasMatch())
            --open;
        else if (track.match(line).hasMatch())
            ++open;
        if (open < 0)
            return true;
    }
    return false;
}

} // namespace

namespace loggrammar {

bool isOfRip(const QStringList& lines)
{
    return lines.value(1) == title;
}

QStringList complaints(const QStringList& lines, bool ofOneRip)
{
    QStringList wrong;
    for (const QString& line : lines) {
        if (!anyLine().match(line).hasMatch())
            wrong << QStringLiteral("a log line of no kind: ") + line;
    }
    const auto titles = lines.count(title);
    if (titles > 1 || (titles == 1 && !isOfRip(lines)))
        wrong << QStringLiteral("the log has its header more than once, or further down");
    if (ofOneRip && isOfRip(lines) && endsBeforeItBegins(lines))
        wrong << QStringLiteral("a track ends that has not begun");
    return wrong;
}

} // namespace loggrammar
