#include "codecs/AacDecoder.h"
#include "codecs/AiffDecoder.h"
#include "codecs/DffDecoder.h"
#include "codecs/DsfDecoder.h"
#include "codecs/FlacDecoder.h"
#include "codecs/IAudioDecoder.h"
#include "codecs/Mp3Decoder.h"
#include "codecs/NoThrow.h"
#include "codecs/OggDecoder.h"
#include "codecs/OpusDecoder.h"
#include "codecs/WavDecoder.h"
#include "codecs/WavPackDecoder.h"

#include <algorithm>
#include <cwctype>
#include <string>
#include <string_view>
#include <type_traits>

namespace {

using DecoderMaker = std::unique_ptr<IAudioDecoder> (*)();

template<typename Decoder>
std::unique_ptr<IAudioDecoder> make()
{
    return std::make_unique<Decoder>();
}

struct DecoderEntry {
    std::wstring_view extension;
    DecoderMaker make;
};

constexpr DecoderEntry decoderTable[] = {
    {L".wav", make<WavDecoder>},    {L".aiff", make<AiffDecoder>}, {L".aif", make<AiffDecoder>},
    {L".mp3", make<Mp3Decoder>},    {L".flac", make<FlacDecoder>}, {L".aac", make<AacDecoder>},
    {L".m4a", make<AacDecoder>},    {L".ogg", make<OggDecoder>},   {L".opus", make<OpusDecoder_>},
    {L".wv", make<WavPackDecoder>}, {L".dsf", make<DsfDecoder>},   {L".dff", make<DffDecoder>},
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
