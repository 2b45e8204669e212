#include "panel/NumberField.h"

#include <QKeyEvent>
#include <QLocale>
#include <QToolTip>
#include <QWheelEvent>
#include <cmath>
#include <limits>

#include "ZoImage/Knob.h"

namespace veloxa::viewer {

namespace {

// Empty where it is a number; else what is wrong.
QString fault_of(const QString& text, double& value) {
    const QByteArray word = text.trimmed().toUtf8();
    const auto quoted = [&] { return "'" + text.trimmed().left(40) + "' "; };
    if (word.isEmpty()) return NumberField::tr("a number is missing");
    if (!Zo::Image::Knob::to_double(std::string_view(word.data(), static_cast<std::size_t>(word.size())),
                                    value)) {
        return quoted() + NumberField::tr("is not a number");
    }
    if (!std::isfinite(value)) return quoted() + NumberField::tr("is not finite");
    if (std::abs(value) > static_cast<double>(std::numeric_limits<float>::max())) {
        return quoted() + NumberField::tr("is too large");
    }
    return {};
}

}  // namespace

QString number_text(double value) {
    const double size = std::abs(value);
    const char format = size == 0.0 || (size >= 1e-5 && size < 1e9) ? 'f' : 'g';
    return QString::number(value, format, QLocale::FloatingPointShortest);
}

NumberField::NumberField(QWidget* parent) : QLineEdit(parent) {
    setAlignment(Qt::AlignRight);
    setContextMenuPolicy(Qt::NoContextMenu);  // the knob's own menu
    const int digits = fontMetrics().horizontalAdvance(QStringLiteral("-0000.00"));
    setMinimumWidth(digits / 2 + 12);
    setMaximumWidth(digits + 16);
    show_value();
}

void NumberField::set_value(double value) {
    if (value == value_) return;
    value_ = value;
    if (!isModified()) show_value();
}

void NumberField::show_value() {
    setText(number_text(value_));
    setCursorPosition(0);
}

// False, with the reason shown, where the text is no number.
bool NumberField::commit() {
    if (!isModified()) return true;
    double value = 0.0;
    const QString fault = fault_of(text(), value);
    if (!fault.isEmpty()) {
        QToolTip::showText(mapToGlobal(QPoint(0, height())), fault, this);
        return false;
    }
    setModified(false);
    const double before = value_;
    value_ = value;
    show_value();
    if (value != before) emit entered(value);
    return true;
}

void NumberField::step(double steps) {
    if (!commit()) return;
    // Sums of steps such as 0.1 would gather digits.
    const double wanted = QString::number(value_ + steps * step_, 'g', 12).toDouble();
    if (std::abs(wanted) > static_cast<double>(std::numeric_limits<float>::max())) return;
    value_ = wanted;
    show_value();
    emit entered(wanted);
}

// With nothing typed, undo is that of the settings.
bool NumberField::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && !isModified()) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
            event->ignore();
            return true;
        }
    }
    if (event->type() == QEvent::ShortcutOverride && isModified() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QLineEdit::event(event);
}

void NumberField::keyPressEvent(QKeyEvent* event) {
    const double factor = event->modifiers() & Qt::ShiftModifier     ? 10.0
                          : event->modifiers() & Qt::ControlModifier ? 0.1
                                                                     : 1.0;
    switch (event->key()) {
        case Qt::Key_Up:
            return step(factor);
        case Qt::Key_Down:
            return step(-factor);
        case Qt::Key_Return:
        case Qt::Key_Enter:
            commit();
            return selectAll();
        case Qt::Key_Escape:
            if (!isModified()) break;
            show_value();
            return selectAll();
        default:
            break;
    }
    QLineEdit::keyPressEvent(event);
}

void NumberField::focusOutEvent(QFocusEvent* event) {
    if (!commit()) show_value();
    QLineEdit::focusOutEvent(event);
}

void NumberField::wheelEvent(QWheelEvent* event) {
    if (!hasFocus()) return event->ignore();
    event->accept();
    if (event->angleDelta().y() != 0) step(event->angleDelta().y() > 0 ? 1.0 : -1.0);
}

}  // namespace veloxa::viewer
