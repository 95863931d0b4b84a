#pragma once

#include "codecs/AudioFormat.h"

#include <QStringList>

#include <filesystem>
#include <memory>
#include <optional>

/// Turns one file into blocks of audio. Order: open, any number of read, close.
/// One thread at a time; nothing throws or shows anything, and nothing is logged
/// but the end of a stream where its rate changes.
class IAudioDecoder {
public:
    virtual ~IAudioDecoder() = default;

    /// False when the file can't be opened, is not of this kind, or a file is
    /// attached already; the attached one is left alone.
    virtual bool open(const std::filesystem::path& path) = 0;

    /// 44100 Hz, 2 channels, 16 bits before the first open.
    virtual AudioFormat format() const = 0;

    /// The next frames; nothing at the end, and nothing ever after. A block
    /// without frames is not the end. Damage in the file either ends the stream
    /// early or reads as zeroes, and nothing tells it from an undamaged one.
    virtual std::optional<AudioBlock> read() = 0;

    /// A hint for progress; only `read` tells the end.
    virtual std::optional<quint64> totalFrames() const = 0;

    /// May be called at any time, and more than once.
    virtual void close() = 0;
};

/// A new, unopened decoder, chosen by what follows the last dot of the path in
/// any case; null for any other ending. The content is not looked at.
std::unique_ptr<IAudioDecoder> makeDecoder(const std::filesystem::path& path);

/// The endings that makeDecoder knows, in lower case with their dots.
QStringList decoderExtensions();
