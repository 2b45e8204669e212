// What tools did, as a table: a line a stroke with its box, its counts and the knobs that it turned. Lines or
// all of it can be copied as text, tabs between columns. Window thread.
#pragma once

#include <QWidget>
#include <vector>

#include "ZoImage/ToolReport.h"

class QLabel;
class QPushButton;
class QTableWidget;

namespace veloxa::viewer {

class ChangesView final : public QWidget {
    Q_OBJECT

  public:
    explicit ChangesView(QWidget* parent = nullptr);

    void show_reports(const std::vector<Zo::Image::ToolReport>& reports);
    // The lines that hold a selected cell, all without a selection, below a line of headings.
    QString text() const;

    // A dock that opens leaves the picture its room.
    QSize sizeHint() const override { return {600, 170}; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void copy() const;

    QTableWidget* table_;
    QLabel* nothing_;
    QPushButton* copy_;
};

}  // namespace veloxa::viewer
