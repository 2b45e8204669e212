// What a knob is seen and changed by. Reads the knob, writes through PanelEdits alone. Window thread.
#pragma once

#include <QWidget>
#include <memory>

#include "session/PanelEdits.h"

namespace veloxa::viewer {

class KnobControl : public QWidget {
    Q_OBJECT

  public:
    // `section` is the label of the tab that the control stands on. A link's control is its target's.
    KnobControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent);

    // Shows what the knob holds; calls nobody.
    virtual void refresh() = 0;
    // Before it goes: its knob may be gone, and nothing of what is being typed or dragged may reach that.
    void retire();

  signals:
    // The control has written; others may have to show it.
    void edited();

  protected:
    PanelEdits& edits() const { return edits_; }
    Zo::Image::Knob& knob() const { return knob_; }
    double shown_value(int i = 0) const;
    void set(double value, int i = 0);
    void begin();
    void end();
    // Gives a part of the control its name, as "brights red, Density", and the knob's tooltip.
    void name_part(QWidget& part, const QString& which = {}) const;

  private:
    PanelEdits& edits_;
    Zo::Image::Knob& knob_;
    QString label_;
    QString section_;
    QString explanation_;
};

// Null for knobs that have no control, as captions.
KnobControl* make_control(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent);

}  // namespace veloxa::viewer
