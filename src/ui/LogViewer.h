#pragma once

#include <QWidget>

class QTextEdit;

/// The running rip log: one paragraph a line, as it is, read-only, never cut short.
class LogViewer : public QWidget {
    Q_OBJECT
public:
    explicit LogViewer(QWidget* parent = nullptr);

    void append(const QString& line);
    void clear();

private:
    QTextEdit* text;
};
