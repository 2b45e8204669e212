#include "panel/ChoiceControls.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QWheelEvent>

namespace veloxa::viewer {

namespace {

QHBoxLayout* tight_row(QWidget* parent) {
    auto* const row = new QHBoxLayout(parent);
    row->setContentsMargins(0, 0, 0, 0);
    return row;
}

// Lets the wheel scroll what it stands in until it has the focus.
class StillMenu final : public QComboBox {
  public:
    using QComboBox::QComboBox;

  protected:
    void wheelEvent(QWheelEvent* event) override {
        if (!hasFocus()) return event->ignore();
        QComboBox::wheelEvent(event);
    }
};

}  // namespace

CheckControl::CheckControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent)
    : KnobControl(edits, knob, section, parent), box_(new QCheckBox(this)) {
    tight_row(this)->addWidget(box_);
    name_part(*box_);
    connect(box_, &QCheckBox::clicked, this, [this](bool on) { set(on ? 1.0 : 0.0); });
    CheckControl::refresh();
}

void CheckControl::refresh() {
    box_->setChecked(knob().get_value() != 0.0);
}

MenuControl::MenuControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent)
    : KnobControl(edits, knob, section, parent), menu_(new StillMenu(this)) {
    for (const std::string& item : this->knob().items()) menu_->addItem(QString::fromStdString(item));
    menu_->setFocusPolicy(Qt::StrongFocus);
    menu_->setContextMenuPolicy(Qt::NoContextMenu);
    tight_row(this)->addWidget(menu_);
    name_part(*menu_);
    connect(menu_, &QComboBox::activated, this, [this](int item) {
        if (item != static_cast<int>(this->knob().get_value())) set(item);
    });
    MenuControl::refresh();
}

void MenuControl::refresh() {
    const QSignalBlocker quiet(menu_);
    menu_->setCurrentIndex(static_cast<int>(knob().get_value()));
}

}  // namespace veloxa::viewer
