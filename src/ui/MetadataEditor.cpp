#include "ui/MetadataEditor.h"

#include <QLabel>
#include <QVBoxLayout>

MetadataEditor::MetadataEditor(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(QStringLiteral("Metadata Editor — coming soon"), this));
}
