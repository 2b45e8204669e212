#include "panel/ColourControl.h"

#include <QColorDialog>
#include <QHBoxLayout>
#include <algorithm>
#include <utility>

#include "panel/ToolIcons.h"

namespace veloxa::viewer {

using namespace Zo::Image;

ColourControl::ColourControl(PanelEdits& edits, Knob& knob, const QString& section, QWidget* parent)
    : KnobControl(edits, knob, section, parent), well_(new QToolButton(this)), pick_(new QToolButton(this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(3);
    row->addWidget(well_);
    add_fields();
    row->addWidget(pick_);
    row->addStretch(1);
    for (QToolButton* const button : {well_, pick_}) button->setFocusPolicy(Qt::StrongFocus);
    name_part(*well_, tr("colour dialog"));
    name_part(*pick_, tr("from picture"));
    pick_->setToolTip(tr("Pick the colour from the picture"));
    pick_->setCheckable(true);
    pick_->setIcon(tool_icon(QStringLiteral("picker")));
    connect(well_, &QToolButton::clicked, this, [this] { open_dialog(); });
    connect(pick_, &QToolButton::clicked, this, [this](bool on) {
        this->edits().pick_colour(on ? &this->knob() : nullptr);
        emit edited();
    });
    ColourControl::refresh();
}

ColourControl::~ColourControl() {
    if (editing_) edits().end_edit();
    delete dialog_;
}

void ColourControl::add_fields() {
    const QStringList names{tr("red"), tr("green"), tr("blue"), tr("alpha")};
    for (int i = 0; i < knob().value_count(); ++i) {
        auto* const field = new NumberField(this);
        fields_.push_back(field);
        layout()->addWidget(field);
        name_part(*field, names.value(i, QString::number(i)));
        field->set_step(0.01);
        connect(field, &NumberField::entered, this, [this, i](double value) { set(value, i); });
    }
}

QColor ColourControl::colour() const {
    const auto part = [&](int i) { return static_cast<float>(std::clamp(knob().get_value(i), 0.0, 1.0)); };
    return QColor::fromRgbF(part(0), part(1), part(2), fields_.size() > 3 ? part(3) : 1.0f);
}

void ColourControl::refresh() {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        fields_[i]->set_value(shown_value(static_cast<int>(i)));
    }
    pick_->setChecked(edits().picking() == &knob());
    if (shown_.isValid() && shown_ == colour()) return;
    shown_ = colour();
    well_->setIcon(swatch_icon(shown_));
}

void ColourControl::open_dialog() {
    if (dialog_ != nullptr) return dialog_->raise();
    before_.clear();
    for (int i = 0; i < knob().value_count(); ++i) before_.push_back(knob().get_value(i));
    dialog_ = new QColorDialog(colour(), this);
    dialog_->setAttribute(Qt::WA_DeleteOnClose);
    // The system's own may be modal over all windows and follows no theme.
    dialog_->setOption(QColorDialog::DontUseNativeDialog);
    dialog_->setOption(QColorDialog::ShowAlphaChannel, fields_.size() > 3);
    dialog_->setWindowTitle(well_->accessibleName());
    connect(dialog_, &QColorDialog::currentColorChanged, this, [this](const QColor& c) { take(c); });
    connect(dialog_, &QColorDialog::finished, this, [this](int result) { close_dialog(result); });
    dialog_->open();
}

void ColourControl::take(const QColor& colour) {
    if (!std::exchange(editing_, true)) begin();
    const double parts[]{colour.redF(), colour.greenF(), colour.blueF(), colour.alphaF()};
    set_all({parts, parts + fields_.size()});
}

void ColourControl::close_dialog(int result) {
    if (!std::exchange(editing_, false)) return;
    if (result == QDialog::Rejected) set_all(before_);
    end();
}

void ColourControl::set_all(const std::vector<double>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) edits().set(knob(), values[i], static_cast<int>(i));
    emit edited();
}

}  // namespace veloxa::viewer
