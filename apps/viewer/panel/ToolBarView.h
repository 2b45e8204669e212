// The tools of the node's toolbar, and, in a bar of their own, the buttons that look at the picture and stand
// on no tab. Window thread.
//
// A second click on a tool, or Esc in the window while one is in use or a colour is being picked, leaves it.
// The edits must outlive the view.
#pragma once

#include <QPointer>
#include <QToolBar>
#include <map>
#include <vector>

#include "panel/KnobControl.h"
#include "session/PanelEdits.h"

class QActionGroup;
class QShortcut;

namespace veloxa::viewer {

class ToolBarView final : public QToolBar {
    Q_OBJECT

  public:
    explicit ToolBarView(PanelEdits& edits, QWidget* parent = nullptr);
    ~ToolBarView() override;

    // The bar of the buttons; it ends with this one.
    QToolBar& buttons() { return *buttons_; }

    // Shows the tool in use, the tools' colours and the settings among them as they stand; signals nothing.
    void refresh();
    // Makes everything anew, as PanelView::rebuild().
    void rebuild();

  signals:
    // A setting among the tools or a button was used, or a tool left; other views may have to show it.
    void edited();

  private:
    void add(Zo::Image::Knob& knob, QString& caption);
    void add_tool(Zo::Image::Knob& tool, const QString& caption);
    void add_control(QToolBar& bar, Zo::Image::Knob& knob, const QString& caption);
    void leave();
    void show_enabled(QAction& action, const Zo::Image::Knob& knob) const;

    PanelEdits& edits_;
    QPointer<QToolBar> buttons_;
    QShortcut* escape_;
    QActionGroup* tools_ = nullptr;
    std::map<Zo::Image::Knob*, QAction*> actions_;
    std::map<Zo::Image::Knob*, QColor> colours_;
    std::vector<KnobControl*> controls_;
};

}  // namespace veloxa::viewer
