#include "base/LocalCodePage.h"

#include <QLocale>

#include <iconv.h>
#include <langinfo.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <string_view>

namespace {

struct IconvCloser {
    using pointer = iconv_t;
    void operator()(iconv_t handle) const { iconv_close(handle); }
};

// iconv's own sign of failure is an all-ones pointer.
bool opened(iconv_t handle)
{
    return reinterpret_cast<std::intptr_t>(handle) != -1;
}

/// Of the system's texts, whether it is installed or not.
QByteArray localeName()
{
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (!qEnvironmentVariableIsEmpty(variable))
            return qgetenv(variable);
    }
    return {};
}

// Qt reads "sr_RS@latin" as the country's usual script.
bool isCyrillic(const QLocale& locale)
{
    const QByteArray name = localeName();
    if (name.endsWith("@latin"))
        return false;
    return name.endsWith("@cyrillic") || locale.script() == QLocale::CyrillicScript;
}

const char* codePageOfLanguage(const QLocale& locale)
{
    switch (locale.language()) {
    case QLocale::Japanese:
        return "CP932";
    case QLocale::Korean:
        return "CP949";
    case QLocale::Chinese:
        return locale.script() == QLocale::TraditionalHanScript || locale.territory() == QLocale::Taiwan
                       || locale.territory() == QLocale::HongKong || locale.territory() == QLocale::Macao
                   ? "CP950"
                   : "CP936";
    default:
        return isCyrillic(locale) ? "CP1251" : "CP1252";
    }
}

const char* localCodePage()
{
    // Plain ASCII is what the C library falls back to where the locale of the
    // environment is not installed, and says nothing of the system's texts.
    const std::string_view codeSet = nl_langinfo(CODESET);
    return codeSet == "UTF-8" || codeSet == "ANSI_X3.4-1968" ? codePageOfLanguage(QLocale::system())
                                                             : nl_langinfo(CODESET);
}

} // namespace

QString decodeCodePage(const QByteArray& bytes, const char* codePage)
{
    constexpr char target[] = "UTF-8";
    iconv_t handle = iconv_open(target, codePage);
    if (!opened(handle))
        handle = iconv_open(target, "CP1252");
    if (!opened(handle))
        return QString::fromLatin1(bytes);
    const std::unique_ptr<void, IconvCloser> owner(handle);

    QByteArray decoded;
    std::array<char, 4096> buffer;
    // The C library only reads through it.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    char* source = const_cast<char*>(bytes.constData());
    auto left = static_cast<size_t>(bytes.size());
    while (left > 0) {
        char* write = buffer.data();
        size_t room = buffer.size();
        const bool failed = iconv(handle, &source, &left, &write, &room) == static_cast<size_t>(-1);
        const bool badBytes = failed && errno != E2BIG;
        decoded.append(buffer.data(), write - buffer.data());
        if (badBytes && left > 0) {
            decoded.append("\xEF\xBF\xBD");
            ++source;
            --left;
        }
    }
    return QString::fromUtf8(decoded);
}

QString decodeLocal8Bit(const QByteArray& bytes)
{
    return decodeCodePage(bytes, localCodePage());
}
