// Work in the background: how far it is, what it says, and the frames that were found worst.
#pragma once

#include <QSet>
#include <QWidget>
#include <vector>

#include "session/Jobs.h"

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTableWidget;

namespace veloxa::viewer {

class JobsView final : public QWidget {
    Q_OBJECT

  public:
    explicit JobsView(QWidget* parent = nullptr);

    void begin(const QString& what);
    void show_progress(double done, int all);
    void add_line(const QString& line);
    void end(const QString& outcome);
    // The worst first.
    void show_worst(std::vector<WorstFrame> frames);

    // A dock that opens leaves the picture its room.
    QSize sizeHint() const override { return {600, 190}; }

  signals:
    void cancelled();
    void frame_chosen(int frame);

  private:
    QSet<QString> told_;  // lines of the work that runs
    QLabel* what_;
    QProgressBar* progress_;
    QPushButton* cancel_;
    QTableWidget* worst_;
    QPlainTextEdit* lines_;
};

}  // namespace veloxa::viewer
