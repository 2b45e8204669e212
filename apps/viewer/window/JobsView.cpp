#include "window/JobsView.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace veloxa::viewer {

namespace {

constexpr int kSteps = 1000;

QTableWidgetItem* item(const QString& text) {
    auto* const made = new QTableWidgetItem(text);
    made->setToolTip(text);
    return made;
}

}  // namespace

JobsView::JobsView(QWidget* parent)
    : QWidget(parent),
      what_(new QLabel(QStringLiteral("Nothing runs in the background."), this)),
      progress_(new QProgressBar(this)),
      cancel_(new QPushButton(QStringLiteral("Cancel"), this)),
      worst_(new QTableWidget(0, 4, this)),
      lines_(new QPlainTextEdit(this)) {
    progress_->setRange(0, kSteps);
    progress_->setAccessibleName(QStringLiteral("Progress of the background work"));
    cancel_->setEnabled(false);
    cancel_->setToolTip(QStringLiteral("Give up the background work; frames that are written stay"));
    worst_->setHorizontalHeaderLabels({QStringLiteral("Frame"), QStringLiteral("Leaks"),
                                       QStringLiteral("Holes"), QStringLiteral("Remark")});
    worst_->setAccessibleName(QStringLiteral("Worst frames"));
    worst_->setToolTip(QStringLiteral("Enter or a double-click goes to the frame"));
    worst_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    worst_->setSelectionBehavior(QAbstractItemView::SelectRows);
    worst_->verticalHeader()->hide();
    worst_->horizontalHeader()->setStretchLastSection(true);
    worst_->hide();
    lines_->setReadOnly(true);
    lines_->setMaximumBlockCount(2000);
    lines_->setAccessibleName(QStringLiteral("Messages"));
    auto* const top = new QHBoxLayout;
    top->addWidget(progress_);
    top->addWidget(cancel_);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(what_);
    layout->addLayout(top);
    layout->addWidget(worst_, 2);
    layout->addWidget(lines_, 1);
    connect(cancel_, &QPushButton::clicked, this, &JobsView::cancelled);
    connect(worst_, &QTableWidget::cellActivated, this,
            [this](int row, int) { emit frame_chosen(worst_->item(row, 0)->text().toInt()); });
}

void JobsView::begin(const QString& what) {
    what_->setText(what);
    told_.clear();
    progress_->setValue(0);
    cancel_->setEnabled(true);
}

void JobsView::show_progress(double done, int all) {
    progress_->setValue(all > 0 ? static_cast<int>(done / all * kSteps) : 0);
    progress_->setFormat(QStringLiteral("%1 of %2 frames").arg(static_cast<int>(done)).arg(all));
}

void JobsView::add_line(const QString& line) {
    // Each frame may tell of the same file.
    if (told_.contains(line)) return;
    told_.insert(line);
    lines_->appendPlainText(line);
}

void JobsView::end(const QString& outcome) {
    cancel_->setEnabled(false);
    what_->setText(outcome);
    lines_->appendPlainText(outcome);
}

void JobsView::show_worst(std::vector<WorstFrame> frames) {
    std::stable_sort(frames.begin(), frames.end());
    worst_->setRowCount(static_cast<int>(frames.size()));
    worst_->show();
    for (int row = 0; row < worst_->rowCount(); ++row) {
        const WorstFrame& frame = frames[static_cast<std::size_t>(row)];
        worst_->setItem(row, 0, item(QString::number(frame.frame)));
        worst_->setItem(row, 1, item(frame.error.empty() ? QString::number(frame.counts.leaks) : QString()));
        worst_->setItem(row, 2, item(frame.error.empty() ? QString::number(frame.counts.holes) : QString()));
        const QString broken =
            frame.counts.broken > 0 ? QStringLiteral("%1 NaN").arg(frame.counts.broken) : QString();
        worst_->setItem(row, 3, item(frame.error.empty() ? broken : QString::fromStdString(frame.error)));
    }
}

}  // namespace veloxa::viewer
