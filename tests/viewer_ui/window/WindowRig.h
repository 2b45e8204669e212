// The whole window on a screen that nobody sees, over procedural plates in a folder of its own.
//
// What is told to session.events is recorded on its way to the window. The pointer comes through the window
// system, as a hand's would.
#pragma once

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QWindow>
#include <cstring>

#include "area/PictureArea.h"
#include "panel/ToolBarView.h"
#include "timeline/FrameStrip.h"
#include "timeline/TimeLine.h"
#include "viewer/session/SessionRig.h"
#include "viewer_ui/Widgets.h"
#include "window/Commands.h"
#include "window/MainWindow.h"

namespace test {

class WindowRig : public SessionRig {
  protected:
    ~WindowRig() override { window_.reset(); }

    // With the events taken in that do not wait.
    template <class Done>
    static bool until(const Done& done) {
        return QTest::qWaitFor(done, static_cast<int>(std::chrono::milliseconds(kPatience).count()));
    }

    void make_window() {
        WindowPlace place;
        place.rescue_folder = QString::fromStdString(file("rescue"));
        place.settings_file = QString::fromStdString(file("kept/viewer.ini"));
        place.program = QStringLiteral("veloxa test");
        window_ = std::make_unique<MainWindow>(place);
        window_->resize(900, 700);
        window_->show();
        window_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        SessionEvents& events = session().events;
        events.shown = [this, own = events.shown](ViewResult& result) {
            shown_ = result;
            if (result.whole && !result.counts && (frames_.empty() || frames_.back() != result.frame))
                frames_.push_back(result.frame);
            own(result);
        };
        events.tool = [this, own = events.tool](const std::vector<ToolReport>& reports, bool preview) {
            if (!preview) reports_ = reports;
            own(reports, preview);
        };
    }
    void open_window(int frames, int width = 160, int height = 96) {
        make_plates(frames, width, height);
        make_window();
        session().open(shot(frames));
        ASSERT_TRUE(settled()) << shown_.error;
    }

    Session& session() const { return window_->session(); }
    PictureArea& area() const { return window_->area(); }
    Knob& panel_knob(std::string_view name) const { return session().panel().get(name); }
    void command(const char* name) const { window_->commands()[name].trigger(); }
    template <class Widget>
    Widget* child(const char* name) const {
        return window_->findChild<Widget*>(QLatin1String(name));
    }
    template <class Widget>
    Widget* accessible(const char* name) const {
        return named<Widget>(*window_, QLatin1String(name));
    }

    bool settled() {
        return until([this] { return at_rest(session()); });
    }

    // The pointer, at places of the picture.
    QPoint at(Point picture) const {
        const Point place = area().picture_geometry().to_area(picture);
        return area().mapTo(window_.get(), (QPointF(place.x, place.y) / area().ratio()).toPoint());
    }
    QWindow* screen() const { return window_->windowHandle(); }
    void press(Point picture) const { QTest::mousePress(screen(), Qt::LeftButton, {}, at(picture)); }
    void move(Point picture) const { QTest::mouseMove(screen(), at(picture)); }
    void release(Point picture) const { QTest::mouseRelease(screen(), Qt::LeftButton, {}, at(picture)); }
    void click(Point picture) const {
        press(picture);
        release(picture);
    }
    void paint(const std::vector<Point>& path) const {
        press(path.front());
        for (const Point& place : path) move(place);
        release(path.back());
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(screen(), key, modifiers);
    }
    void take_tool(const std::string& name) const {
        auto* const action = child<QAction>(name.c_str());
        ASSERT_NE(action, nullptr) << name;
        if (!action->isChecked()) action->trigger();
    }

    // Dialogs open without waiting, so that there is one to answer.
    template <class Dialog>
    Dialog* dialog(const char* name) const {
        Dialog* found = nullptr;
        until([&] { return (found = child<Dialog>(name)) != nullptr && found->isVisible(); });
        return found;
    }
    void answer(const char* name, QMessageBox::StandardButton button) const {
        auto* const box = dialog<QMessageBox>(name);
        ASSERT_NE(box, nullptr) << name;
        box->button(button)->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void answer_file(const std::string& path) const {
        auto* const box = dialog<QFileDialog>("file_dialog");
        ASSERT_NE(box, nullptr);
        box->selectFile(QString::fromStdString(path));
        static_cast<QDialog*>(box)->accept();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void save_as(const std::string& path) const {
        command("save_as");
        answer_file(path);
        ASSERT_TRUE(until([&] { return !session().modified() && session().document() == path; }));
    }

    // What is shown is what the command line keys with the script that is saved now.
    void expect_shown_as_keyed() {
        const std::string script = file("check" + std::to_string(++checks_) + ".veloxa");
        save_as(script);
        ASSERT_TRUE(settled());
        ASSERT_EQ(shown_.error, "");
        SetupOptions again;
        again.inputs = session().files().inputs;
        again.frames = session().files().frames;
        again.fit = session().files().fit;
        again.settings.script = script;
        const veloxa::Image expected = keyed(again, session().frame());
        for (const Channel c : kMaskRgba) {
            const std::size_t bytes = expected.width() * expected.height() * sizeof(float);
            const float* const shown = shown_.picture.image->plane(c).get();
            // By their bits, since some may be NaN.
            EXPECT_EQ(std::memcmp(shown, expected.plane(c).get(), bytes), 0) << session().frame();
        }
    }

    std::unique_ptr<MainWindow> window_;
    std::vector<ToolReport> reports_;
    int checks_ = 0;
    std::vector<int> frames_;  // that were shown whole, each once in a row
};

}  // namespace test
