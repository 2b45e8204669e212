#include "window/ViewBar.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QMenu>
#include <algorithm>

#include "render/Pictures.h"
#include "window/Commands.h"

namespace veloxa::viewer {

namespace {

constexpr std::array kAgainstTexts{"now", "A", "B", "default", "automatic"};

}  // namespace

ViewBar::ViewBar(Session& session, ViewColour& colour, const Commands& commands, QWidget* parent)
    : QToolBar(QStringLiteral("View"), parent), session_(session), colour_(colour) {
    setObjectName(QStringLiteral("view_bar"));
    add_pane(0);
    add_pane(1);
    difference_ =
        add_number(QStringLiteral("× "), QStringLiteral("Gain of the difference"), 0.01, 10000.0, 1.0);
    difference_action_ = actions().back();
    addSeparator();
    gain_ = add_number(QStringLiteral(" gain "), QStringLiteral("Gain of the view"), 0.001, 1000.0, 1.0);
    gamma_ = add_number(QStringLiteral(" gamma "), QStringLiteral("Gamma of the view"), 0.05, 20.0, 1.0);
    addSeparator();
    display_ = new QComboBox(this);
    display_->setObjectName(QStringLiteral("display"));
    display_->setAccessibleName(QStringLiteral("Display"));
    display_->setToolTip(QStringLiteral("What the values are shown on; nothing of it changes the key"));
    for (const DisplayChoice& choice : colour_.choices())
        display_->addItem(QString::fromStdString(choice.label));
    addWidget(display_);
    connect(display_, &QComboBox::currentIndexChanged, this, [this](int n) {
        if (!refreshing_ && n >= 0) colour_.choose(static_cast<std::size_t>(n));
    });
    connect(gain_, &QDoubleSpinBox::valueChanged, this, &ViewBar::change_view);
    connect(gamma_, &QDoubleSpinBox::valueChanged, this, &ViewBar::change_view);
    connect(difference_, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        if (!refreshing_) session_.set_difference_gain(static_cast<float>(value));
    });
    wire(commands);
    refresh();
}

void ViewBar::add_pane(std::size_t n) {
    PaneChoice& choice = panes_[n];
    const QString which = n == 0 ? QStringLiteral("first") : QStringLiteral("second");
    choice.picture = new QComboBox(this);
    choice.picture->setObjectName(which + QStringLiteral("_picture"));
    choice.picture->setAccessibleName(QStringLiteral("Picture of the %1 pane").arg(which));
    choice.picture->setToolTip(
        QStringLiteral("What is shown: the result, its matte, the inputs, inner stages"));
    for (const std::string& name : picture_names(session_.node()))
        choice.picture->addItem(QString::fromStdString(name));
    choice.against = new QComboBox(this);
    choice.against->setObjectName(which + QStringLiteral("_settings"));
    choice.against->setAccessibleName(QStringLiteral("Settings of the %1 pane").arg(which));
    choice.against->setToolTip(
        QStringLiteral("By which settings: those of now, kept ones, the defaults, the automatic set-up"));
    for (const char* const text : kAgainstTexts) choice.against->addItem(QString::fromLatin1(text));
    choice.actions = {addWidget(choice.picture), addWidget(choice.against)};
    connect(choice.picture, &QComboBox::currentTextChanged, this, [this, n](const QString& name) {
        if (refreshing_) return;
        Sight sight = session_.sight(n);
        sight.picture = name.toStdString();
        session_.set_sight(n, sight);
    });
    connect(choice.against, &QComboBox::currentIndexChanged, this, [this, n](int against) {
        if (refreshing_) return;
        Sight sight = session_.sight(n);
        sight.against = static_cast<Against>(against);
        session_.set_sight(n, sight);
    });
}

QDoubleSpinBox* ViewBar::add_number(const QString& caption, const QString& name, double low, double high,
                                    double value) {
    auto* const label = new QLabel(caption, this);
    auto* const box = new QDoubleSpinBox(this);
    box->setRange(low, high);
    box->setDecimals(3);
    box->setSingleStep(0.1);
    box->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType);
    box->setValue(value);
    box->setKeyboardTracking(false);
    box->setAccessibleName(name);
    box->setToolTip(name);
    label->setBuddy(box);
    addWidget(label);
    addWidget(box);
    return box;
}

void ViewBar::change_view() {
    if (refreshing_) return;
    for (std::size_t n = 0; n < panes_.size(); ++n) {
        Sight sight = session_.sight(n);
        sight.view.gain = static_cast<float>(gain_->value());
        sight.view.gamma = static_cast<float>(gamma_->value());
        session_.set_sight(n, sight);
    }
}

void ViewBar::wire(const Commands& commands) {
    QMenu* const stages = commands.menu("&View/&Picture").addMenu(QStringLiteral("Inner St&age"));
    for (const std::string& picture : picture_names(session_.node())) {
        const auto show = [this, picture] { show_picture(picture); };
        if (is_stage(picture)) {
            stages->addAction(QString::fromStdString(picture), this, show);
        } else {
            connect(&commands["picture " + picture], &QAction::triggered, this, show);
        }
    }
    connect(&commands["picture_next"], &QAction::triggered, this, [this] { step_picture(1); });
    connect(&commands["picture_previous"], &QAction::triggered, this, [this] { step_picture(-1); });
}

void ViewBar::show_picture(const std::string& name) {
    panes_[0].picture->setCurrentText(QString::fromStdString(name));
}

void ViewBar::step_picture(int by) {
    QComboBox& box = *panes_[0].picture;
    box.setCurrentIndex((box.currentIndex() + by + box.count()) % box.count());
}

void ViewBar::refresh() {
    refreshing_ = true;
    for (std::size_t n = 0; n < panes_.size(); ++n) {
        const Sight& sight = session_.sight(n);
        panes_[n].picture->setCurrentText(QString::fromStdString(sight.picture));
        panes_[n].against->setCurrentIndex(static_cast<int>(sight.against));
        for (QAction* const action : panes_[n].actions)
            action->setVisible(n == 0 || session_.layout() != Layout::kSingle);
    }
    gain_->setValue(static_cast<double>(session_.sight(0).view.gain));
    gamma_->setValue(static_cast<double>(session_.sight(0).view.gamma));
    difference_->setValue(static_cast<double>(session_.difference_gain()));
    const QList<QAction*> all = actions();
    const bool differs = session_.layout() == Layout::kDifference;
    difference_action_->setVisible(differs);
    all[all.indexOf(difference_action_) - 1]->setVisible(differs);
    display_->setCurrentIndex(static_cast<int>(colour_.choice()));
    refreshing_ = false;
}

}  // namespace veloxa::viewer
