#include "convert/ConvertDialog.h"

#include "base/Language.h"
#include "convert/ConversionRun.h"
#include "convert/StatusLabel.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int defaultFormat = 1;
constexpr int labelWidth = 110;

QString musicFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
}

QString sourceTitle()
{
    return pickLang("変換元フォルダを選択", "Select source folder");
}

QString outputTitle()
{
    return pickLang("出力先フォルダを選択", "Select output folder");
}

bool isShown(const QWidget* widget)
{
    return widget && widget->isVisible();
}

/// Keeps the fields below each other, whatever the length of their labels.
void alignFields(const QList<QLabel*>& labels)
{
    // Not by their size hints, which a label would keep and not renew.
    const auto textWidth = [](QLabel* label) {
        label->ensurePolished();
        // The rounding, too, has to be a label's own.
        constexpr QRect room(0, 0, 4096, 4096);
        return label->fontMetrics().boundingRect(room, Qt::TextShowMnemonic, label->text()).width();
    };
    int widest = labelWidth;
    for (QLabel* label : labels)
        widest = std::max(widest, textWidth(label));
    for (QLabel* label : labels)
        label->setContentsMargins(0, 0, widest - textWidth(label), 0);
}

QPushButton* browseButton(const QString& accessibleName)
{
    auto* made = new QPushButton(pickLang("参照...", "Browse..."));
    made->setObjectName(QStringLiteral("browseBtn"));
    made->setAccessibleName(accessibleName);
    // Enter in a field would click it otherwise.
    made->setAutoDefault(false);
    return made;
}

QString summary(qsizetype found, const ConversionCounts& counts)
{
    QString text = pickLang("完了: %1件中 %2件成功", "Done: %2 of %1 files converted")
                       .arg(QString::number(found), QString::number(counts.converted));
    if (counts.failed > 0)
        text += pickLang("、%1件変換不可", ", %1 failed").arg(counts.failed);
    if (counts.skipped > 0)
        text += pickLang("、%1件処理不可(同一形式)", ", %1 skipped (same format)").arg(counts.skipped);
    return text;
}

} // namespace

ConvertDialog::ConvertDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle(pickLang("ファイル変換", "Convert Files"));
    setMinimumWidth(560);

    sourceEdit = new QLineEdit;
    sourceEdit->setPlaceholderText(pickLang(
        "変換元フォルダを選択（.wav / .aiff / .mp3 / .flac / .aac / .m4a / .ogg / .opus / .wv / .dsf / "
        ".dff が対象）",
        "Select source folder (.wav / .aiff / .mp3 / .flac / .aac / .m4a / .ogg / .opus / .wv / .dsf / "
        ".dff)"));
    sourceEdit->setObjectName(QStringLiteral("pathEdit"));
    sourceBrowse = browseButton(sourceTitle());
    dsdWarning = new QLabel(pickLang(
        "⚠ DSF/DFF(DSD)の変換は実験的な機能です。音質は未検証のため、変換後は必ず試聴して確認してください。",
        "⚠ DSF/DFF (DSD) conversion is experimental. Sound quality has not been verified, so please "
        "listen to the converted files to check them."));
    dsdWarning->setWordWrap(true);
    dsdWarning->setStyleSheet(QStringLiteral("color: #ffaa00;"));
    dsdWarning->hide();
    formatCombo = new QComboBox;
    for (const char* format : {"WAV", "FLAC", "MP3"})
        formatCombo->addItem(QStringLiteral("▾ ") + QLatin1String(format), QLatin1String(format));
    formatCombo->setCurrentIndex(defaultFormat);
    outputEdit = new QLineEdit(musicFolder());
    outputEdit->setObjectName(QStringLiteral("pathEdit"));
    outputEdit->setPlaceholderText(outputTitle());
    outputBrowse = browseButton(outputTitle());
    convertButton = new QPushButton(pickLang("変換", "Convert"));
    convertButton->setObjectName(QStringLiteral("ripBtn"));
    convertButton->setFixedHeight(36);
    convertButton->setAutoDefault(false);
    statusLabel = new StatusLabel;

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row(pickLang("① 変換元フォルダ:", "① Source folder:"), sourceEdit, sourceBrowse));
    layout->addWidget(dsdWarning);
    layout->addLayout(row(pickLang("② 出力フォーマット:", "② Output format:"), formatCombo));
    layout->addLayout(row(pickLang("③ 出力先フォルダ:", "③ Output folder:"), outputEdit, outputBrowse));
    layout->addWidget(convertButton);
    layout->addWidget(statusLabel);

    alignFields(fieldLabels);

    connect(sourceBrowse, &QPushButton::clicked, this, &ConvertDialog::onBrowseInput);
    connect(outputBrowse, &QPushButton::clicked, this, &ConvertDialog::onBrowseOutput);
    connect(convertButton, &QPushButton::clicked, this, &ConvertDialog::onConvertClicked);
}

QHBoxLayout* ConvertDialog::row(const QString& text, QWidget* field, QPushButton* browse)
{
    auto* label = new QLabel(text);
    label->setMinimumWidth(labelWidth);
    label->setBuddy(field);
    fieldLabels.append(label);
    auto* made = new QHBoxLayout;
    made->addWidget(label);
    made->addWidget(field, 1);
    if (browse)
        made->addWidget(browse);
    return made;
}

void ConvertDialog::onBrowseInput()
{
    const QString folder = QFileDialog::getExistingDirectory(this, sourceTitle());
    if (folder.isEmpty())
        return;
    sourceEdit->setText(folder);
    if (outputEdit->text().isEmpty())
        outputEdit->setText(folder + QStringLiteral("/converted"));
    updateDsdWarning();
}

void ConvertDialog::onBrowseOutput()
{
    const QString folder = QFileDialog::getExistingDirectory(this, outputTitle(), outputEdit->text());
    if (!folder.isEmpty())
        outputEdit->setText(folder);
}

void ConvertDialog::updateDsdWarning()
{
    const QFileInfoList files = audioFilesIn(sourceEdit->text());
    dsdWarning->setVisible(std::any_of(files.begin(), files.end(), [](const QFileInfo& file) {
        return hasExtension(file.fileName(), {QStringLiteral(".dsf"), QStringLiteral(".dff")});
    }));
    growToText();
}

void ConvertDialog::showStatus(const QString& text)
{
    statusLabel->setText(text);
    growToText();
}

/// A layout does not make room by itself for text that wraps.
void ConvertDialog::growToText()
{
    layout()->activate();
    resize(width(), std::max(height(), layout()->totalHeightForWidth(width())));
}

void ConvertDialog::resetForm()
{
    finished = false;
    sourceEdit->clear();
    outputEdit->setText(musicFolder());
    formatCombo->setCurrentIndex(defaultFormat);
    statusLabel->clear();
    convertButton->setText(pickLang("変換", "Convert"));
}

/// Makes the output folder where it is missing; says what is wrong otherwise.
bool ConvertDialog::foldersAreThere()
{
    const QString source = sourceEdit->text();
    const QString output = outputEdit->text();
    if (source.isEmpty() || output.isEmpty())
        showStatus(pickLang("変換元フォルダと出力先フォルダの両方を指定してください。",
                            "Please select both a source folder and an output folder."));
    else if (!QDir(source).exists())
        showStatus(pickLang("変換元フォルダが見つかりません。", "Source folder not found."));
    else if (!QDir(output).exists() && !QDir().mkpath(output))
        showStatus(pickLang("出力先フォルダを作成できませんでした。", "Could not create the output folder."));
    else
        return true;
    return false;
}

void ConvertDialog::onConvertClicked()
{
    if (finished)
        resetForm();
    else if (foldersAreThere())
        run(QDir(sourceEdit->text()).absolutePath());
}

void ConvertDialog::run(const QString& sourceFolder)
{
    const QFileInfoList files = audioFilesIn(sourceFolder);
    if (files.isEmpty()) {
        showStatus(pickLang("対応する音声ファイル(.wav/.aiff/.mp3/.flac/.aac/.m4a/.ogg/.opus/.wv/.dsf/"
                            ".dff)が見つかりませんでした。",
                            "No supported audio files "
                            "(.wav/.aiff/.mp3/.flac/.aac/.m4a/.ogg/.opus/.wv/.dsf/.dff) were found."));
        return;
    }
    convertButton->setEnabled(false);

    // Whatever may happen while events are let through: the run outlives neither
    // this dialog nor the window that it belongs to.
    const QPointer<ConvertDialog> dialog(this);
    const QPointer<QWidget> owner(parentWidget() ? parentWidget()->window() : nullptr);
    const bool ownerWasShown = isShown(owner);
    ConversionRun conversion(sourceFolder, outputEdit->text(), formatCombo->currentData().toString(),
                             [this, dialog, owner, ownerWasShown](const QString& text) {
                                 showStatus(text);
                                 QCoreApplication::processEvents();
                                 return dialog && (!ownerWasShown || isShown(owner));
                             });
    const ConversionCounts counts = conversion.convert(files);
    if (!dialog)
        return;
    showStatus(summary(files.size(), counts));
    convertButton->setText(pickLang("完了", "Done"));
    finished = true;
    convertButton->setEnabled(true);
}
