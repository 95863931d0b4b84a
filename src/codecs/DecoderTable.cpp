#include "codecs/IAudioDecoder.h"
#include "codecs/Make.h"
#include "codecs/NoThrow.h"
#include "codecs/dsd/DffDecoder.h"
#include "codecs/dsd/DsfDecoder.h"
#include "codecs/flac/FlacDecoder.h"
#include "codecs/media/AacDecoder.h"
#include "codecs/mp3/Mp3Decoder.h"
#include "codecs/ogg/OggDecoder.h"
#include "codecs/ogg/OpusDecoder.h"
#include "codecs/pcm/AiffDecoder.h"
#include "codecs/pcm/WavDecoder.h"
#include "codecs/wavpack/WavPackDecoder.h"

#include <algorithm>
#include <cwctype>
#include <string_view>
#include <type_traits>

namespace {

using DecoderMaker = std::unique_ptr<IAudioDecoder> (*)();

template<typename Decoder>
constexpr DecoderMaker maker = make<IAudioDecoder, Decoder>;

struct DecoderEntry {
    std::wstring_view extension;
    DecoderMaker make;
};

constexpr DecoderEntry decoderTable[] = {
    {L".wav", maker<WavDecoder>},    {L".aiff", maker<AiffDecoder>}, {L".aif", maker<AiffDecoder>},
    {L".mp3", maker<Mp3Decoder>},    {L".flac", maker<FlacDecoder>}, {L".aac", maker<AacDecoder>},
    {L".m4a", maker<AacDecoder>},    {L".ogg", maker<OggDecoder>},   {L".opus", maker<OpusDecoder_>},
    {L".wv", maker<WavPackDecoder>}, {L".dsf", maker<DsfDecoder>},   {L".dff", maker<DffDecoder>},
};

template<typename Character>
std::wstring toWide(const std::basic_string<Character>& name)
{
    if constexpr (std::is_same_v<Character, wchar_t>)
        return name;
    else
        return QString::fromUtf8(name).toStdWString();
}

/// What follows the last dot of the whole path, folders included, with the dot.
std::wstring lowerExtension(const std::filesystem::path& path)
{
    const auto& whole = path.native();
    const auto dot = whole.rfind(std::filesystem::path::value_type('.'));
    if (dot == std::filesystem::path::string_type::npos)
        return {};
    // Characters are lowered, not bytes.
    std::wstring extension = toWide(whole.substr(dot));
    std::transform(extension.begin(), extension.end(), extension.begin(), [](wchar_t letter) {
        return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(letter)));
    });
    return extension;
}

} // namespace

std::unique_ptr<IAudioDecoder> makeDecoder(const std::filesystem::path& path)
{
    return withoutThrowing([&]() -> std::unique_ptr<IAudioDecoder> {
        const std::wstring extension = lowerExtension(path);
        for (const DecoderEntry& entry : decoderTable) {
            if (entry.extension == extension)
                return entry.make();
        }
        return nullptr;
    });
}

QStringList decoderExtensions()
{
    QStringList extensions;
    for (const DecoderEntry& entry : decoderTable)
        extensions.append(
            QString::fromWCharArray(entry.extension.data(), static_cast<qsizetype>(entry.extension.size())));
    return extensions;
}
