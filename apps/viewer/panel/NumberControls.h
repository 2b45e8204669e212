// A slider and a field for one number; two fields and a lock for a width and a height.
#pragma once

#include <QToolButton>
#include <array>

#include "panel/KnobControl.h"
#include "panel/KnobSlider.h"
#include "panel/NumberField.h"

namespace veloxa::viewer {

class FloatControl final : public KnobControl {
    Q_OBJECT

  public:
    FloatControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent);
    void refresh() override;

  private:
    KnobSlider* slider_;
    NumberField* field_;
};

// While locked both are the same; it unlocks by itself when they come to differ.
class SizeControl final : public KnobControl {
    Q_OBJECT

  public:
    SizeControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent);
    void refresh() override;

  private:
    void enter(int i, double value);

    std::array<NumberField*, 2> fields_{};
    QToolButton* lock_;
};

}  // namespace veloxa::viewer
