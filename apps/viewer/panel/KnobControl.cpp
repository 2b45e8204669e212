#include "panel/KnobControl.h"

#include "ZoImage/KnobDisplay.h"
#include "panel/ButtonControl.h"
#include "panel/ChoiceControls.h"
#include "panel/ColourControl.h"
#include "panel/NumberControls.h"
#include "panel/PanelLayout.h"

namespace veloxa::viewer {

using namespace Zo::Image;
using Kind = Knob::Kind;

KnobControl::KnobControl(PanelEdits& edits, Knob& knob, const QString& section, QWidget* parent)
    : QWidget(parent),
      edits_(edits),
      knob_(knob.target()),
      label_(label_of(knob)),
      section_(section),
      explanation_(explanation(knob)) {
    setObjectName(QString::fromStdString(knob.name()));
}

void KnobControl::retire() {
    for (QObject* const child : findChildren<QObject*>()) child->blockSignals(true);
}

double KnobControl::shown_value(int i) const {
    return shown(knob_, knob_.get_value(i));
}

void KnobControl::set(double value, int i) {
    edits_.set(knob_, value, i);
    emit edited();
}

void KnobControl::begin() {
    edits_.begin_edit(full_name(knob_, section_).toStdString());
}

void KnobControl::end() {
    edits_.end_edit();
    emit edited();
}

void KnobControl::name_part(QWidget& part, const QString& which) const {
    const QString label = which.isEmpty() ? label_ : label_ + ' ' + which;
    part.setAccessibleName(section_.isEmpty() ? label : label + ", " + section_);
    part.setToolTip(explanation_);
}

KnobControl* make_control(PanelEdits& edits, Knob& knob, const QString& section, QWidget* parent) {
    switch (knob.target().kind()) {
        case Kind::kBool:
            return new CheckControl(edits, knob, section, parent);
        case Kind::kMenu:
            return new MenuControl(edits, knob, section, parent);
        case Kind::kFloat:
            return new FloatControl(edits, knob, section, parent);
        case Kind::kWidthHeight:
            return new SizeControl(edits, knob, section, parent);
        case Kind::kColor:
        case Kind::kColorAlpha:
            return new ColourControl(edits, knob, section, parent);
        case Kind::kButton:
        case Kind::kScriptButton:
            return new ButtonControl(edits, knob, section, parent);
        default:
            return nullptr;
    }
}

}  // namespace veloxa::viewer
