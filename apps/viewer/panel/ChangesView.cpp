#include "panel/ChangesView.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <set>

namespace veloxa::viewer {

using namespace Zo::Image;

namespace {

QString text_of(const std::string& text) {
    return QString::fromStdString(text);
}

QString box_of(const Box& box) {
    return QStringLiteral("%1, %2 to %3, %4").arg(box.x).arg(box.y).arg(box.r).arg(box.t);
}

QString changes_of(const ToolReport& report) {
    QStringList lines;
    for (const KnobChange& change : report.changes) {
        lines << text_of(change.knob) + "  " + text_of(change.before) + QStringLiteral(" \u2192 ") +
                     text_of(change.after);
    }
    return lines.join('\n');
}

QString notes_of(const ToolReport& report) {
    QStringList lines;
    if (!report.failure.empty()) lines << ChangesView::tr("Failed: ") + text_of(report.failure);
    for (const std::string& note : report.notes) lines << text_of(note);
    QStringList held;
    for (const std::string& knob : report.held) held << text_of(knob);
    if (!held.empty()) lines << ChangesView::tr("Held: ") + held.join(", ");
    return lines.join('\n');
}

QStringList cells_of(const ToolReport& report) {
    return {text_of(report.tool),
            QString::number(report.frame),
            box_of(report.box),
            QString::number(report.satisfied),
            QString::number(report.unsatisfied),
            QString::number(report.unusable),
            changes_of(report),
            notes_of(report)};
}

}  // namespace

ChangesView::ChangesView(QWidget* parent)
    : QWidget(parent),
      table_(new QTableWidget(this)),
      nothing_(new QLabel(tr("No tool was used yet."), this)),
      copy_(new QPushButton(tr("Copy"), this)) {
    const QStringList headings{tr("Tool"),        tr("Frame"),    tr("Box"),     tr("Satisfied"),
                               tr("Unsatisfied"), tr("Unusable"), tr("Changes"), tr("Notes")};
    table_->setColumnCount(static_cast<int>(headings.size()));
    table_->setHorizontalHeaderLabels(headings);
    table_->verticalHeader()->hide();
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setTabKeyNavigation(false);
    table_->setWordWrap(false);
    table_->setAccessibleName(tr("What tools changed"));
    table_->setToolTip(tr("What each stroke of a tool looked at and which settings it turned"));
    table_->installEventFilter(this);
    copy_->setAccessibleName(tr("Copy what tools changed"));
    copy_->setToolTip(tr("Copy the selected lines, or all of them, as text"));
    connect(copy_, &QPushButton::clicked, this, &ChangesView::copy);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(nothing_);
    column->addWidget(table_, 1);
    column->addWidget(copy_, 0, Qt::AlignRight);
    show_reports({});
}

void ChangesView::show_reports(const std::vector<ToolReport>& reports) {
    table_->clearSelection();
    table_->setRowCount(static_cast<int>(reports.size()));
    for (int row = 0; row < table_->rowCount(); ++row) {
        const ToolReport& report = reports[static_cast<std::size_t>(row)];
        int column = 0;
        for (const QString& cell : cells_of(report)) {
            auto* const item = new QTableWidgetItem(cell);
            item->setTextAlignment(Qt::AlignLeft | Qt::AlignTop);
            if (!report.failure.empty()) item->setForeground(palette().brightText());
            table_->setItem(row, column++, item);
        }
    }
    table_->resizeColumnsToContents();
    nothing_->setVisible(reports.empty());
    copy_->setEnabled(!reports.empty());
}

QString ChangesView::text() const {
    std::set<int> rows;
    for (const QModelIndex& index : table_->selectionModel()->selectedIndexes()) rows.insert(index.row());
    const bool all = rows.empty();
    for (int row = 0; all && row < table_->rowCount(); ++row) rows.insert(row);
    const auto line = [&](auto cell) {
        QStringList cells;
        for (int column = 0; column < table_->columnCount(); ++column) {
            // A line of the table is one of the text.
            cells << QString(cell(column)).replace('\n', QStringLiteral("; ")).replace('\t', ' ');
        }
        return cells.join('\t') + '\n';
    };
    QString text = line([&](int column) { return table_->horizontalHeaderItem(column)->text(); });
    for (const int row : rows) text += line([&](int column) { return table_->item(row, column)->text(); });
    return text;
}

void ChangesView::copy() const {
    QGuiApplication::clipboard()->setText(text());
}

// The table's own answer is the text of one cell.
bool ChangesView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        return QWidget::eventFilter(watched, event);
    }
    copy();
    return true;
}

}  // namespace veloxa::viewer
