#pragma once

#include <QWidget>

/// Keeps the place of an editor of its own; the Metadata page does the editing.
class MetadataEditor : public QWidget {
    Q_OBJECT
public:
    explicit MetadataEditor(QWidget* parent = nullptr);
};
