#pragma once

#include <QByteArray>
#include <QList>
#include <QtGlobal>

#include <span>

/// One track of a simulated disc.
struct SimulatedTrack {
    quint32 startLba = 0;
    bool isData = false;
    int session = 1; ///< rises by one where a new session begins
};

/// What lies in a drive: a table of contents and the samples behind it.
struct SimulatedDisc {
    QByteArray audio; ///< sectors from LBA 0 on; a disc that is longer repeats them
    QList<SimulatedTrack> tracks{{0, false}};
    int firstTrackNumber = 1;
    quint32 leadOutLba = 0; ///< 0: right behind `audio`
    QByteArray tocBytes;    ///< delivered in place of the true table, when not empty

    quint32 leadOut() const;
    void fillToc(std::span<quint8, 804> table) const;

    /// Whether a drive delivers this sector as audio: neither data, nor the gap
    /// between two sessions, nor outside the disc.
    bool isAudio(qint64 lba) const;

    /// Copies a sector's worth of frames from any frame of the disc on. What
    /// does not lie in audio is silence: a drive that reads ahead of an audio
    /// track's edge mutes its output.
    void copyFrames(qint64 firstFrame, quint8* sector) const;

    /// What a host can know of a sector through a drive whose samples come
    /// `offset` frames late (early when negative): the disc's samples, and
    /// silence for those that this drive shows under no audio address.
    QByteArray visibleSector(quint32 lba, int offset) const;
};

inline constexpr quint32 simulatedSessionGap = 11400; ///< lead-out, lead-in and pregap between sessions
