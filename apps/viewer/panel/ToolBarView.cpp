#include "panel/ToolBarView.h"

#include <QActionGroup>
#include <QLabel>
#include <QShortcut>
#include <QToolButton>
#include <algorithm>

#include "ZoImage/KnobDisplay.h"
#include "panel/PanelLayout.h"
#include "panel/ToolIcons.h"

namespace veloxa::viewer {

using namespace Zo::Image;
using Kind = Knob::Kind;

namespace {

// Invalid where the tool holds none: its alpha is 0 then.
QColor colour_of(const Knob& tool) {
    if (!(tool.get_value(3) > 0.0)) return {};
    const auto part = [&](int i) { return static_cast<float>(std::clamp(tool.get_value(i), 0.0, 1.0)); };
    return QColor::fromRgbF(part(0), part(1), part(2));
}

QIcon icon_of(const Knob& tool, const QColor& colour) {
    return tool_icon(QString::fromStdString(tool_label(tool.label()).icon), colour);
}

}  // namespace

ToolBarView::ToolBarView(PanelEdits& edits, QWidget* parent)
    : QToolBar(tr("Tools"), parent),
      edits_(edits),
      buttons_(new QToolBar(tr("Set-up"), parent)),
      escape_(new QShortcut(Qt::Key_Escape, this)) {
    setObjectName(QStringLiteral("tools"));
    buttons_->setObjectName(QStringLiteral("set_up_bar"));
    setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    connect(escape_, &QShortcut::activated, this, &ToolBarView::leave);
    rebuild();
}

ToolBarView::~ToolBarView() {
    delete buttons_;
}

void ToolBarView::rebuild() {
    for (KnobControl* const control : controls_) control->retire();
    qDeleteAll(actions());
    qDeleteAll(buttons_->actions());
    actions_.clear();
    colours_.clear();
    controls_.clear();
    delete tools_;
    tools_ = new QActionGroup(this);
    tools_->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    const PanelLayout layout = lay_out(edits_.panel());
    QString caption;
    for (Knob* const knob : layout.toolbar) {
        if (knob == nullptr || knob->kind() == Kind::kToolbarSeparator) {
            caption.clear();
            addSeparator();
        } else {
            add(*knob, caption);
        }
    }
    for (Knob* const knob : layout.actions) add_control(*buttons_, *knob, {});
    refresh();
}

void ToolBarView::add(Knob& knob, QString& caption) {
    if (knob.kind() == Kind::kToolButton) return add_tool(knob, caption);
    if (knob.kind() != Kind::kText) return add_control(*this, knob, caption);
    caption = label_of(knob);
    auto* const label = new QLabel(caption, this);
    label->setMargin(4);
    addWidget(label);
}

void ToolBarView::add_tool(Knob& tool, const QString& caption) {
    const QString word = label_of(tool);
    auto* const action = new QAction(word, tools_);
    action->setCheckable(true);
    action->setToolTip(explanation(tool));
    action->setObjectName(QString::fromStdString(tool.name()));
    action->setIcon(icon_of(tool, {}));
    addAction(action);
    actions_[&tool] = action;
    connect(action, &QAction::triggered, this, [this, &tool](bool on) {
        edits_.use_tool(on ? &tool : nullptr);
        refresh();
    });
    QWidget* const button = widgetForAction(action);
    button->setAccessibleName(caption.isEmpty() ? word : word + ", " + caption);
    button->setFocusPolicy(Qt::TabFocus);
}

void ToolBarView::add_control(QToolBar& bar, Knob& knob, const QString& caption) {
    // A link may carry its group's own name, which needs no saying twice.
    KnobControl* const control =
        make_control(edits_, knob, caption == label_of(knob) ? QString() : caption, &bar);
    if (control == nullptr) return;
    controls_.push_back(control);
    control->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    actions_[&knob] = bar.addWidget(control);
    connect(control, &KnobControl::edited, this, [this] {
        refresh();
        emit edited();
    });
}

void ToolBarView::leave() {
    if (edits_.picking() != nullptr) {
        edits_.pick_colour(nullptr);
    } else {
        edits_.use_tool(nullptr);
    }
    refresh();
    emit edited();
}

void ToolBarView::show_enabled(QAction& action, const Knob& knob) const {
    action.setEnabled(knob.enabled());
    action.setVisible(knob.visible());
}

void ToolBarView::refresh() {
    for (const auto& [knob, action] : actions_) {
        show_enabled(*action, *knob);
        if (knob->kind() != Kind::kToolButton) continue;
        action->setChecked(knob == edits_.tool());
        const QColor colour = colour_of(*knob);
        if (colour == colours_[knob]) continue;
        colours_[knob] = colour;
        action->setIcon(icon_of(*knob, colour));
    }
    for (KnobControl* const control : controls_) control->refresh();
    // Elsewhere the key is the window's.
    escape_->setEnabled(edits_.tool() != nullptr || edits_.picking() != nullptr);
}

}  // namespace veloxa::viewer
