#include "panel/NumberControls.h"

#include <QHBoxLayout>

#include "panel/ToolIcons.h"

namespace veloxa::viewer {

using namespace Zo::Image;

FloatControl::FloatControl(PanelEdits& edits, Knob& knob, const QString& section, QWidget* parent)
    : KnobControl(edits, knob, section, parent),
      slider_(new KnobSlider(this->knob().range().value_or(KnobRange{0.0, 1.0}), this)),
      field_(new NumberField(this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(slider_, 1);
    row->addWidget(field_);
    name_part(*slider_, tr("slider"));
    name_part(*field_);
    field_->set_step(slider_->step());
    connect(slider_, &KnobSlider::begun, this, [this] { begin(); });
    connect(slider_, &KnobSlider::moved, this, [this](double value) { set(value); });
    connect(slider_, &KnobSlider::ended, this, [this] { end(); });
    connect(field_, &NumberField::entered, this, [this](double value) { set(value); });
    FloatControl::refresh();
}

void FloatControl::refresh() {
    const double value = shown_value();
    slider_->set_value(value);
    field_->set_value(value);
}

SizeControl::SizeControl(PanelEdits& edits, Knob& knob, const QString& section, QWidget* parent)
    : KnobControl(edits, knob, section, parent) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    const std::array<QString, 2> names{tr("width"), tr("height")};
    for (int i = 0; i < 2; ++i) {
        auto* const field = new NumberField(this);
        fields_[static_cast<std::size_t>(i)] = field;
        row->addWidget(field);
        name_part(*field, names[static_cast<std::size_t>(i)]);
        const KnobRange range = this->knob().range().value_or(KnobRange{0.0, 1.0});
        field->set_step(range.high - range.low <= 1.0 ? 0.01 : 1.0);
        connect(field, &NumberField::entered, this, [this, i](double value) { enter(i, value); });
    }
    lock_ = new QToolButton(this);
    lock_->setCheckable(true);
    lock_->setChecked(this->knob().get_value(0) == this->knob().get_value(1));
    lock_->setIcon(tool_icon(QStringLiteral("lock")));
    lock_->setFocusPolicy(Qt::StrongFocus);
    name_part(*lock_, tr("lock"));
    lock_->setToolTip(tr("Width and height are the same"));
    row->addWidget(lock_);
    row->addStretch(1);
    connect(lock_, &QToolButton::clicked, this, [this](bool on) {
        if (on && shown_value(0) != shown_value(1)) set(shown_value(0), 1);
    });
    SizeControl::refresh();
}

void SizeControl::enter(int i, double value) {
    if (!lock_->isChecked()) return set(value, i);
    begin();
    edits().set(knob(), value, i);
    edits().set(knob(), value, 1 - i);
    end();
}

void SizeControl::refresh() {
    for (int i = 0; i < 2; ++i) fields_[static_cast<std::size_t>(i)]->set_value(shown_value(i));
    if (knob().get_value(0) != knob().get_value(1)) lock_->setChecked(false);
}

}  // namespace veloxa::viewer
