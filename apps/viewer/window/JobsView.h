// Work in the background: how far it is, what it says, and the frames that were found worst.
#pragma once

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

  signals:
    void cancelled();
    void frame_chosen(int frame);

  private:
    QLabel* what_;
    QProgressBar* progress_;
    QPushButton* cancel_;
    QTableWidget* worst_;
    QPlainTextEdit* lines_;
};

}  // namespace veloxa::viewer
