// Fields for the numbers of a colour, a well that shows it and opens a dialog, and a button that takes it
// from the picture. The well shows the numbers as they are kept, cut off at 0 and 1.
#pragma once

#include <QColor>
#include <QPointer>
#include <QToolButton>
#include <vector>

#include "panel/KnobControl.h"
#include "panel/NumberField.h"

class QColorDialog;

namespace veloxa::viewer {

class ColourControl final : public KnobControl {
    Q_OBJECT

  public:
    ColourControl(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent);
    ~ColourControl() override;
    void refresh() override;

  private:
    void add_fields();
    void open_dialog();
    void take(const QColor& colour);
    void close_dialog(int result);
    void set_all(const std::vector<double>& values);
    QColor colour() const;

    QToolButton* well_;
    QToolButton* pick_;
    std::vector<NumberField*> fields_;
    QColor shown_;
    QPointer<QColorDialog> dialog_;
    std::vector<double> before_;  // the dialog
    bool editing_ = false;
};

}  // namespace veloxa::viewer
