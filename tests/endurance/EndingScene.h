#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <array>
#include <random>

/// What the program is in the middle of, and how and when it is made to end.
/// Everything follows from the seed.
struct EndingScene {
    enum Work { imageRip, discRip, lookup, verification, conversion, workCount };
    enum Way { windowCloses, signalComes };

    explicit EndingScene(quint32 number) : seed(number)
    {
        std::mt19937 random(seed);
        work = static_cast<Work>(seed % workCount);
        way = seed / workCount % 2 == 0 ? signalComes : windowCloses;
        percent = static_cast<int>(random() % 100);
        milliseconds = static_cast<int>(random() % 400);
    }

    QString name() const
    {
        constexpr std::array<const char*, workCount> works{"an image rip", "a disc rip", "a lookup",
                                                           "a verification", "a conversion"};
        return QStringLiteral("seed %1: %2, %3 after %4% and %5 ms")
            .arg(QString::number(seed), QLatin1String(works[work]),
                 way == signalComes ? QStringLiteral("SIGTERM") : QStringLiteral("closed"),
                 QString::number(percent), QString::number(milliseconds));
    }

    quint32 seed;
    Work work;
    Way way;
    int percent;      ///< of the work that is done at least, where it shows its progress
    int milliseconds; ///< that go by after that
};

/// The discs and files that a scene plays with. All tracks of a disc are as long
/// as each other, and so are all files of the conversion.
namespace endingstage {

inline constexpr int trackCount = 5;
inline constexpr int trackSectors = 900;
inline constexpr int shortTrackSectors = 20;
inline constexpr int fileCount = 8;
inline constexpr int fileSectors = 600;

inline const QString longSheet = QStringLiteral("long/disc.cue");
inline const QString shortSheet = QStringLiteral("short/disc.cue");
inline const QString sourceFolder = QStringLiteral("songs");

} // namespace endingstage
