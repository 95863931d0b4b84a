#include "ui/AboutPage.h"

#include "ui/PageParts.h"
#include "ui/ProgramInfo.h"

#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int iconPixels = 80;

constexpr char description[] = "High Fidelity CD Ripper & Audio Converter\n\n"
                               "Part of the Tarvel Series\n"
                               "Rip with Tarvel CD Ripper, enjoy with Tarvel Player\n\n"
                               "Rip: Audio CD / CUE+BIN / audio file\n"
                               "AccurateRip verification\n"
                               "Tags & cover art (MusicBrainz / iTunes)\n\n"
                               "Convert: 11 audio formats\n"
                               "Output: FLAC / WAV / MP3";

QLabel* centred(const QString& text, const char* objectName)
{
    auto* made = pageparts::label(text, objectName);
    made->setAlignment(Qt::AlignCenter);
    return made;
}

} // namespace

QWidget* buildAboutPage()
{
    auto* icon = pageparts::label(QString(), "aboutIcon");
    icon->setFixedSize(iconPixels, iconPixels);
    icon->setPixmap(QIcon(QStringLiteral(":/icon.ico")).pixmap(iconPixels, iconPixels));
    const QString address = QLatin1String(programinfo::site);
    auto* site = pageparts::linkLabel(QStringLiteral("%1"), address, address);
    site->setAlignment(Qt::AlignCenter);

    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setAlignment(Qt::AlignTop);
    layout->setContentsMargins(40, 28, 40, 24);
    layout->setSpacing(12);
    layout->addWidget(icon, 0, Qt::AlignHCenter);
    layout->addWidget(centred(QLatin1String(programinfo::name), "aboutTitle"));
    layout->addWidget(
        centred(QStringLiteral("Version ") + QLatin1String(programinfo::buildLabel), "aboutVer"));
    layout->addWidget(pageparts::line());
    layout->addWidget(centred(QLatin1String(description), "aboutDesc"));
    layout->addWidget(pageparts::line());
    layout->addWidget(centred(QLatin1String(programinfo::maker), "aboutAuthor"));
    layout->addWidget(site);
    layout->addStretch();
    return page;
}
