#include "panel/SectionView.h"

#include <QHBoxLayout>
#include <algorithm>

namespace veloxa::viewer {

using namespace Zo::Image;

SectionView::SectionView(PanelEdits& edits, const PanelSection& section, QWidget* parent)
    : QWidget(parent), label_(QString::fromStdString(section.label)), enable_(section.enable) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    if (!label_.isEmpty()) add_title(edits, section.enable);
    body_ = new QWidget(this);
    column->addWidget(body_);
    auto* const lines = new QVBoxLayout(body_);
    lines->setContentsMargins(4, 0, 4, 6);
    lines->setSpacing(3);
    for (Knob* const knob : section.knobs) {
        auto* const row = new KnobRow(edits, *knob, label_, body_);
        rows_.push_back(row);
        lines->addWidget(row);
        connect(row, &KnobRow::edited, this, &SectionView::edited);
    }
}

void SectionView::add_title(PanelEdits& edits, Knob* enable) {
    auto* const bar = new QWidget(this);
    bar->setAutoFillBackground(true);
    bar->setBackgroundRole(QPalette::Button);
    auto* const row = new QHBoxLayout(bar);
    row->setContentsMargins(2, 1, 4, 1);
    fold_ = new QToolButton(bar);
    fold_->setAutoRaise(true);
    fold_->setCheckable(true);
    fold_->setChecked(true);
    fold_->setArrowType(Qt::DownArrow);
    fold_->setFocusPolicy(Qt::StrongFocus);
    fold_->setAccessibleName(tr("Show %1").arg(label_));
    fold_->setToolTip(tr("Show or hide the settings of %1").arg(label_));
    row->addWidget(fold_);
    if (enable != nullptr) {
        switch_ = make_control(edits, *enable, label_, bar);
        row->addWidget(switch_);
        connect(switch_, &KnobControl::edited, this, &SectionView::edited);
    }
    title_ = new MarkedLabel(label_, bar);
    row->addWidget(title_, 1);
    layout()->addWidget(bar);
    connect(title_, &MarkedLabel::double_clicked, fold_, &QToolButton::click);
    connect(fold_, &QToolButton::clicked, this, [this](bool open) {
        show_body(open);
        if (searching_) return;
        folded_ = !open;
        emit folding_changed();
    });
}

void SectionView::show_body(bool open) {
    body_->setVisible(open);
    if (fold_ == nullptr) return;
    fold_->setChecked(open);
    fold_->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
}

void SectionView::set_folded(bool folded) {
    if (fold_ == nullptr) return;
    folded_ = folded;
    if (!searching_) show_body(!folded_);
}

void SectionView::refresh() {
    for (KnobRow* const row : rows_) row->refresh();
    if (switch_ != nullptr) {
        switch_->setEnabled(enable_->enabled());
        switch_->setVisible(enable_->visible());
        switch_->refresh();
    }
    if (title_ == nullptr) return;
    const bool switched = enable_ != nullptr && enable_->differs_from_default();
    title_->set_marked(switched || std::ranges::any_of(rows_, [](auto* row) { return row->differs(); }));
}

bool SectionView::search(const QStringList& words) {
    searching_ = !words.isEmpty();
    const bool tab = !searching_ || std::ranges::all_of(words, [&](const QString& word) {
        return label_.contains(word, Qt::CaseInsensitive);
    });
    bool any = tab;
    for (KnobRow* const row : rows_) {
        row->set_found(tab || row->has(words));
        any = any || row->found();
    }
    setVisible(any);
    show_body(searching_ || !folded_);
    return any;
}

}  // namespace veloxa::viewer
