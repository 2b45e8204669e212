#include "panel/KnobRow.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>
#include <QWhatsThis>
#include <algorithm>

#include "panel/PanelLayout.h"

namespace veloxa::viewer {

using namespace Zo::Image;
using Kind = Knob::Kind;

namespace {

constexpr int kDotRoom = 10;
constexpr int kSpacer = 6;
constexpr int kLabelLetters = 20;  // as wide as this many; longer ones break into lines

}  // namespace

MarkedLabel::MarkedLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
    setIndent(kDotRoom);
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
}

void MarkedLabel::set_marked(bool marked) {
    if (marked_ == marked) return;
    marked_ = marked;
    QFont face = font();
    face.setBold(marked);
    setFont(face);
    setAccessibleDescription(marked ? tr("differs from its default") : QString());
}

void MarkedLabel::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    if (!marked_) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().link());
    painter.drawEllipse(QPointF(kDotRoom / 2.0 - 1.0, height() / 2.0), 3.0, 3.0);
}

void MarkedLabel::mouseDoubleClickEvent(QMouseEvent*) {
    emit double_clicked();
}

KnobRow::KnobRow(PanelEdits& edits, Knob& knob, const QString& section, QWidget* parent)
    : QWidget(parent), edits_(edits), knob_(knob) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    control_ = make_control(edits, knob, section, this);
    const bool valued = knob.takes_value();
    if (valued || control_ == nullptr) {
        label_ = new MarkedLabel(label_of(knob), this);
        row->addWidget(label_, control_ == nullptr ? 1 : 0);
    }
    if (control_ == nullptr) {
        if (label_->text().isEmpty()) setFixedHeight(kSpacer);
        return;
    }
    if (label_ != nullptr) {
        label_->setFixedWidth(kLabelLetters * fontMetrics().averageCharWidth() + kDotRoom);
        label_->setToolTip(explanation(knob));
        connect(label_, &MarkedLabel::double_clicked, this, &KnobRow::reset);
    }
    row->addWidget(control_, 1);
    setWhatsThis(explanation(knob));
    connect(control_, &KnobControl::edited, this, &KnobRow::edited);
}

void KnobRow::refresh() {
    setVisible(found_ && knob_.visible());
    if (control_ == nullptr) return;
    setEnabled(knob_.enabled());
    if (label_ != nullptr) label_->set_marked(differs());
    control_->refresh();
}

bool KnobRow::differs() const {
    return knob_.takes_value() && knob_.differs_from_default();
}

bool KnobRow::has(const QStringList& words) const {
    if (control_ == nullptr) return false;
    const QString text = label_of(knob_) + ' ' + QString::fromStdString(knob_.name()) + ' ' +
                         QString::fromStdString(knob_.target().name());
    return std::ranges::all_of(words,
                               [&](const QString& word) { return text.contains(word, Qt::CaseInsensitive); });
}

void KnobRow::set_found(bool found) {
    found_ = found;
    setVisible(found_ && knob_.visible());
}

void KnobRow::reset() {
    edits_.reset(knob_.target());
    emit edited();
}

void KnobRow::contextMenuEvent(QContextMenuEvent* event) {
    if (control_ == nullptr) return event->ignore();
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (knob_.takes_value()) {
        QAction* const back = menu->addAction(tr("Reset to default"), this, &KnobRow::reset);
        back->setEnabled(differs() && isEnabled());
    }
    menu->addAction(tr("Copy name"), this,
                    [this] { QGuiApplication::clipboard()->setText(QString::fromStdString(knob_.name())); });
    const QPoint place = event->globalPos();
    menu->addAction(tr("What is this?"), this,
                    [this, place] { QWhatsThis::showText(place, whatsThis(), this); });
    menu->popup(place);
}

}  // namespace veloxa::viewer
