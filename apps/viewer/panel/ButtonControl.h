// A button; one with items asks for one of them and presses itself with it.
#pragma once

#include <QActionGroup>
#include <QMenu>
#include <QToolButton>

#include "panel/KnobControl.h"

namespace veloxa::viewer {

class ButtonControl final : public KnobControl {
    Q_OBJECT

  public:
    ButtonControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent);
    void refresh() override;

  private:
    void press();

    QToolButton* button_;
    QMenu* items_ = nullptr;
    QActionGroup* choices_ = nullptr;
};

}  // namespace veloxa::viewer
