#pragma once

#include <QString>
#include <QStringList>

struct RipCounters;
struct RipResult;
struct SectorResult;

/// The lines that the window writes into the rip log, in their fixed form.
namespace riplog {

QString doubleRule();

/// What a rip starts with, as the user typed it.
struct Header {
    QString startTime; ///< "yyyy-MM-dd  hh:mm:ss", local
    QString album;
    QString artist;
    QString outputFolder;
    bool physicalDrive = false;
    QString driveModel;   ///< physical drives
    int sampleOffset = 0; ///< physical drives
    QString offsetSource; ///< physical drives
    QString sourcePath;   ///< any other source
    QString format;
    QString namingRule;
};

QStringList missingSource();
/// Up to and including the rule above the track lines.
QStringList header(const Header& rip);
QString cover(bool found);
QString trackStarted(int number, const QString& title);
QString trackDone(const RipResult& result);
/// Empty for a sector that calls for no line.
QString sectorWarning(const SectorResult& sector);

QStringList discResult(const RipCounters& counters);
QString discSummary(const RipCounters& counters);
QStringList audioFileResult();

} // namespace riplog
