// A line of the panel: a knob's label, marked where the knob differs from its default, and its control. A
// double click on the label resets the knob.
#pragma once

#include <QLabel>
#include <QWidget>

#include "panel/KnobControl.h"

namespace veloxa::viewer {

// A dot and bold letters for what differs. Leaves room for both, so that nothing moves when they come.
class MarkedLabel : public QLabel {
    Q_OBJECT

  public:
    MarkedLabel(const QString& text, QWidget* parent);

    void set_marked(bool marked);
    bool marked() const { return marked_; }

  signals:
    void double_clicked();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    bool marked_ = false;
};

class KnobRow final : public QWidget {
    Q_OBJECT

  public:
    KnobRow(PanelEdits& edits, Zo::Image::Knob& knob, const QString& section, QWidget* parent);

    void refresh();
    // Whether its label or name has all of the words; captions have none.
    bool has(const QStringList& words) const;
    void set_found(bool found);
    bool found() const { return found_; }
    bool differs() const;
    QWidget* control() const { return control_; }

  signals:
    void edited();

  protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void reset();

    PanelEdits& edits_;
    Zo::Image::Knob& knob_;
    MarkedLabel* label_ = nullptr;
    KnobControl* control_ = nullptr;
    bool found_ = true;
};

}  // namespace veloxa::viewer
