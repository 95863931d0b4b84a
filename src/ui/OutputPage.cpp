#include "ui/OutputPage.h"

#include "base/Language.h"
#include "rip/OutputNaming.h"
#include "ui/ElidedLabel.h"
#include "ui/PageParts.h"
#include "ui/RipSettings.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <array>

namespace {

/// By the number of the format; the worker has two more than the page offers.
constexpr std::array<const char*, 5> extensions{"flac", "wav", "mp3", "m4a", "m4a"};

struct FormatChoice {
    const char* japanese;
    const char* english;
    const char* name;
};

constexpr std::array<FormatChoice, 3> formatChoices{{
    {"FLAC  （可逆圧縮・タグ・アルバムアート埋め込み）", "FLAC  (lossless · tags · cover art)", "flac"},
    {"WAV   （非圧縮・タグ・アルバムアート埋め込み）", "WAV   (uncompressed · tags · cover art)", "wav"},
    {"MP3   （非可逆圧縮・タグ・アルバムアート埋め込み）", "MP3   (lossy · tags · cover art)", "mp3"},
}};

QString sampleFileName(QString rule, int number, const QString& artist, const QString& album,
                       const QString& extension)
{
    rule.replace(QStringLiteral("{track}"), twoDigits(number));
    rule.replace(QStringLiteral("{title}"), pickLang("曲名", "Title"));
    rule.replace(QStringLiteral("{artist}"), artist);
    rule.replace(QStringLiteral("{album}"), album);
    rule.replace(QStringLiteral("{year}"), pickLang("年", "Year"));
    return rule + QLatin1Char('.') + extension;
}

} // namespace

OutputPage::OutputPage(const RipSettings& inForce, QWidget* parent) : QWidget(parent), settings(inForce)
{
    formatCombo = new QComboBox(this);
    formatCombo->hide();
    auto* layout = pageparts::pageLayout(this, 20);
    layout->addWidget(pageparts::heading(
        pickLang("出力先とフォーマットを設定してください", "Choose the output folder and format")));
    layout->addWidget(buildFolderGroup());
    layout->addWidget(buildFormatGroup());
    layout->addWidget(buildPreviewGroup());
    layout->addStretch();
    updatePreview();
}

QGroupBox* OutputPage::buildFolderGroup()
{
    outputPathEdit = pageparts::lineEdit("pathEdit", pickLang("フォルダを選択...", "Select folder..."));
    outputPathEdit->setText(settings.folderToStartWith());
    outputPathEdit->setAccessibleName(pickLang("出力先フォルダ", "Output folder"));
    auto* browseBtn = pageparts::button(pickLang("参照...", "Browse..."), "browseBtn");
    browseBtn->setFixedWidth(80);
    browseBtn->setAccessibleName(pickLang("出力先フォルダを選択", "Browse for an output folder"));
    connect(browseBtn, &QPushButton::clicked, this, &OutputPage::browseClicked);

    auto* row = new QHBoxLayout;
    row->addWidget(outputPathEdit, 1);
    row->addWidget(browseBtn);
    return pageparts::group(pickLang("出力先フォルダ", "Output Folder"), row);
}

QGroupBox* OutputPage::buildFormatGroup()
{
    auto* buttons = new QButtonGroup(this);
    auto* column = new QVBoxLayout;
    for (const FormatChoice& choice : formatChoices) {
        auto* radio = new QRadioButton(pickLang(choice.japanese, choice.english));
        radio->setObjectName(QStringLiteral("fmtRadio"));
        buttons->addButton(radio, formatCombo->count());
        formatCombo->addItem(QLatin1String(choice.name));
        column->addWidget(radio);
    }
    buttons->button(0)->setChecked(true);
    connect(buttons, &QButtonGroup::idClicked, this, [this](int id) {
        formatCombo->setCurrentIndex(id);
        updatePreview();
    });
    auto* made = pageparts::group(pickLang("出力フォーマット", "Output Format"), column);
    column->setSpacing(10);
    return made;
}

QGroupBox* OutputPage::buildPreviewGroup()
{
    folderPreview = new ElidedLabel; // a naming rule may be of any length
    folderPreview->setObjectName(QStringLiteral("previewLabel"));
    folderPreview->setTextFormat(Qt::PlainText);
    auto* content = new QVBoxLayout;
    content->addWidget(folderPreview);
    return pageparts::group(pickLang("フォルダ構成プレビュー", "Folder Preview"), content);
}

QString OutputPage::folder() const
{
    return outputPathEdit->text();
}

void OutputPage::setFolder(const QString& path)
{
    outputPathEdit->setText(path);
}

QString OutputPage::format() const
{
    return formatCombo->currentText();
}

void OutputPage::updatePreview()
{
    const int chosen = formatCombo->currentIndex();
    const bool known =
        chosen >= 0 && chosen < formatCombo->count() && chosen < static_cast<int>(extensions.size());
    const QString extension = QLatin1String(extensions[known ? static_cast<std::size_t>(chosen) : 0]);
    const QString artist = pickLang("アーティスト名", "Artist");
    const QString album = pickLang("アルバム名", "Album");

    folderPreview->setText(pickLang("出力先", "Output folder") + QStringLiteral("\\\n  └─ ") + artist
                           + QStringLiteral(" - ") + album + QStringLiteral("\\\n        ├─ ")
                           + sampleFileName(settings.namingRule, 1, artist, album, extension)
                           + QStringLiteral("\n        ├─ ")
                           + sampleFileName(settings.namingRule, 2, artist, album, extension)
                           + QStringLiteral("\n        └─ cover.jpg\n\n")
                           + pickLang("※ 複数枚組は Disc1\\ Disc2\\ … に分かれます",
                                      "* Multi-disc sets are split into Disc1\\ Disc2\\ …"));
}

void OutputPage::browse()
{
    const QString chosen =
        QFileDialog::getExistingDirectory(window(), pickLang("出力先フォルダを選択", "Select output folder"),
                                          outputPathEdit->text(), QFileDialog::ShowDirsOnly);
    if (!chosen.isEmpty())
        outputPathEdit->setText(chosen);
}
