#include "panel/PanelView.h"

#include <QKeyEvent>
#include <QLabel>
#include <QStyle>
#include <QVBoxLayout>

namespace veloxa::viewer {

namespace {

// Esc clears it, before any shortcut sees the key.
class SearchField final : public QLineEdit {
  public:
    using QLineEdit::QLineEdit;

  protected:
    bool event(QEvent* event) override {
        const bool key = event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress;
        if (key && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && !text().isEmpty()) {
            if (event->type() == QEvent::KeyPress) clear();
            event->accept();
            return true;
        }
        return QLineEdit::event(event);
    }
};

}  // namespace

PanelView::PanelView(PanelEdits& edits, QWidget* parent)
    : QWidget(parent),
      edits_(edits),
      search_(new SearchField(this)),
      nothing_(new QLabel(tr("No setting has these words."), this)),
      scroll_(new QScrollArea(this)) {
    search_->setPlaceholderText(tr("Search settings"));
    search_->setAccessibleName(tr("Search settings"));
    search_->setToolTip(
        tr("Shows the settings whose label, name or tab has these words; Esc shows all again"));
    search_->setClearButtonEnabled(true);
    nothing_->hide();
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->setFocusPolicy(Qt::NoFocus);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 0, 0);
    column->addWidget(search_);
    column->addWidget(nothing_);
    column->addWidget(scroll_, 1);
    connect(search_, &QLineEdit::textChanged, this, &PanelView::search);
    rebuild();
}

void PanelView::rebuild() {
    const QStringList labels = folded();
    sections_.clear();
    if (QWidget* const former = scroll_->widget()) {
        for (KnobControl* const control : former->findChildren<KnobControl*>()) control->retire();
        delete scroll_->takeWidget();
    }
    auto* const content = new QWidget;
    auto* const column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 4, 4);
    for (const PanelSection& section : lay_out(edits_.panel()).sections) {
        auto* const view = new SectionView(edits_, section, content);
        sections_.push_back(view);
        column->addWidget(view);
        connect(view, &SectionView::edited, this, &PanelView::refresh);
        connect(view, &SectionView::edited, this, &PanelView::edited);
        connect(view, &SectionView::folding_changed, this, &PanelView::folding_changed);
    }
    column->addStretch(1);
    scroll_->setWidget(content);
    scroll_->setMinimumWidth(content->minimumSizeHint().width() +
                             scroll_->style()->pixelMetric(QStyle::PM_ScrollBarExtent));
    set_folded(labels);
    refresh();
    search();
}

void PanelView::refresh() {
    for (SectionView* const section : sections_) section->refresh();
}

QStringList PanelView::folded() const {
    QStringList labels;
    for (const SectionView* const section : sections_) {
        if (section->folded()) labels.append(section->label());
    }
    return labels;
}

void PanelView::set_folded(const QStringList& labels) {
    for (SectionView* const section : sections_) section->set_folded(labels.contains(section->label()));
}

void PanelView::focus_search() {
    search_->setFocus(Qt::ShortcutFocusReason);
    search_->selectAll();
}

void PanelView::search() {
    const QStringList words = search_->text().split(' ', Qt::SkipEmptyParts);
    bool any = false;
    for (SectionView* const section : sections_) any = section->search(words) || any;
    nothing_->setVisible(!any);
}

}  // namespace veloxa::viewer
