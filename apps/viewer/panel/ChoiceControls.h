// A check box for true or false, a menu for the index of an item.
#pragma once

#include <QCheckBox>
#include <QComboBox>

#include "panel/KnobControl.h"

namespace veloxa::viewer {

class CheckControl final : public KnobControl {
    Q_OBJECT

  public:
    CheckControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent);
    void refresh() override;

  private:
    QCheckBox* box_;
};

class MenuControl final : public KnobControl {
    Q_OBJECT

  public:
    MenuControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent);
    void refresh() override;

  private:
    QComboBox* menu_;
};

}  // namespace veloxa::viewer
