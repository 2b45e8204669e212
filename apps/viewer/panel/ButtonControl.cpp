#include "panel/ButtonControl.h"

#include <QHBoxLayout>

#include "panel/PanelLayout.h"

namespace veloxa::viewer {

ButtonControl::ButtonControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section,
                             QWidget* parent)
    : KnobControl(edits, knob, section, parent), button_(new QToolButton(this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(button_);
    row->addStretch(1);
    button_->setText(label_of(knob));
    button_->setFocusPolicy(Qt::StrongFocus);
    name_part(*button_);
    if (this->knob().items().empty()) {
        connect(button_, &QToolButton::clicked, this, [this] { press(); });
        return;
    }
    items_ = new QMenu(button_);
    choices_ = new QActionGroup(items_);
    int n = 0;
    for (const std::string& item : this->knob().items()) {
        QAction* const choice = choices_->addAction(items_->addAction(QString::fromStdString(item)));
        choice->setCheckable(true);
        connect(choice, &QAction::triggered, this, [this, n] {
            if (this->knob().get_value() != n) this->edits().set(this->knob(), n);
            press();
        });
        ++n;
    }
    button_->setMenu(items_);
    button_->setPopupMode(QToolButton::InstantPopup);
    ButtonControl::refresh();
}

void ButtonControl::press() {
    edits().press(knob());
    emit edited();
}

void ButtonControl::refresh() {
    if (items_ == nullptr) return;
    const auto item = static_cast<qsizetype>(knob().get_value());
    if (item >= 0 && item < items_->actions().size()) items_->actions()[item]->setChecked(true);
}

}  // namespace veloxa::viewer
