#include "ui/AlbumFolder.h"

#include "base/FittingName.h"
#include "rip/OutputNaming.h"

#include <QRegularExpression>

namespace {

QString orUnknown(const QString& field)
{
    return field.isEmpty() ? QStringLiteral("Unknown") : field;
}

} // namespace

QString cleanedArtist(const QString& field)
{
    const QString artist = orUnknown(field);
    const auto cut = artist.indexOf(QStringLiteral(" - "));
    return cut > 0 ? artist.left(cut).trimmed() : artist;
}

QString cleanedAlbum(const QString& field)
{
    static const QRegularExpression parenthesised(QStringLiteral(R"(\s*\([^)]*\))"));
    return orUnknown(field).remove(parenthesised).trimmed();
}

QString albumFolderName(const QString& artist, const QString& album)
{
    return fittingName(
        QStringLiteral("%1 - %2").arg(withoutForbiddenCharacters(artist), withoutForbiddenCharacters(album)));
}

bool looksGenerated(const QString& title)
{
    static const QRegularExpression generated(QStringLiteral(R"(^Track\s+\d+$)"));
    return generated.match(title).hasMatch();
}
