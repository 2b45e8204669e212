// A field for one number. Takes any finite one that a float holds and shows the shortest text for it.
//
// Up and Down step, with Shift ten times as far, with Ctrl a tenth; so does the wheel, but only in the field
// that has the focus: any other lets it scroll what it stands in.
#pragma once

#include <QLineEdit>

namespace veloxa::viewer {

class NumberField : public QLineEdit {
    Q_OBJECT

  public:
    explicit NumberField(QWidget* parent = nullptr);

    void set_step(double step) { step_ = step; }
    double value() const { return value_; }
    // Shows it; what the user is just typing stays.
    void set_value(double value);

  signals:
    void entered(double value);

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    bool commit();
    void show_value();
    void step(double steps);

    double value_ = 0.0;
    double step_ = 1.0;
};

// The shortest text that is read back as the number, without exponent where that reads well.
QString number_text(double value);

}  // namespace veloxa::viewer
