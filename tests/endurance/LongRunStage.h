#pragma once

#include "endurance/ProcessLevel.h"
#include "endurance/Repetitions.h"
#include "ui/VerifyStage.h"

#include <functional>

/// Where the same is done again and again in one process, which has to come back to
/// what it held after a warm-up. Once all has run, a table says what was held.
class LongRunStage : public VerifyStage {
protected:
    static void TearDownTestSuite();

    struct Part {
        const char* name;
        Repetitions tries;
        quint32 warmUp;          ///< seeds from 0 on that are tried before
        int each = 1;            ///< how many of what is counted a try does
        qint64 allowedBytes = 0; ///< that the libraries keep of each try
    };

    /// Handles and threads have to be as many after the tries as before them, and the
    /// heap but a little larger.
    /// @return by how many bytes it grew
    qint64 repeat(const Part& part, const std::function<void(quint32 seed)>& attempt);

    /// A disc of tracks of 4 s, the shortest that there are, in the drive.
    void loadDisc(WindowDriver& app, int trackCount);
    /// Title, artist and cover for every disc that is asked for.
    void answerLookups(int trackCount);
    /// From the Source step, where a source was chosen, up to the result box; a disc is
    /// verified, too. Then back to the Source step and Reset.
    void ripAndReset(WindowDriver& app, int format, int trackCount, bool verifies);
    /// Every track of the last rip, whole; they are gone afterwards.
    void expectTracks(const QByteArray& audio, int trackCount);

    static constexpr int trackSectors = 300;
    static constexpr int trackBytes = trackSectors * 2352;

private:
    ProcessLevel settledLevel();
    void serveChecksums(int trackCount);

    bool inDatabase = false;
};
