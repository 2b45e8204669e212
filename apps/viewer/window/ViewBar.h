// What is looked at: pictures and settings of one or two panes, gain, gamma, the display. Window thread.
#pragma once

#include <QToolBar>
#include <array>

#include "session/Session.h"
#include "session/ViewColour.h"

class QAction;
class QComboBox;
class QDoubleSpinBox;

namespace veloxa::viewer {

class Commands;

class ViewBar final : public QToolBar {
    Q_OBJECT

  public:
    // The commands of pictures choose the first pane's.
    ViewBar(Session& session, ViewColour& colour, const Commands& commands, QWidget* parent = nullptr);

    // Shows the panes as they are.
    void refresh();

  private:
    struct PaneChoice {
        QComboBox* picture = nullptr;
        QComboBox* against = nullptr;
        std::array<QAction*, 2> actions{};
    };

    void add_pane(std::size_t n);
    void wire(const Commands& commands);
    void show_picture(const std::string& name);
    void step_picture(int by);
    QDoubleSpinBox* add_number(const QString& caption, const QString& name, double low, double high,
                               double value);
    void change_view();

    Session& session_;
    ViewColour& colour_;
    std::array<PaneChoice, 2> panes_;
    QDoubleSpinBox* gain_;
    QDoubleSpinBox* gamma_;
    QDoubleSpinBox* difference_;
    QAction* difference_action_;
    QComboBox* display_;
    bool refreshing_ = false;
};

}  // namespace veloxa::viewer
