// A hand at the viewer's window on a screen that nobody sees: pointer and keys come through the window
// system, as a user's would. What does not come about throws std::runtime_error.
#pragma once

#include <QFileDialog>
#include <QPoint>
#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "picture/Geometry.h"
#include "window/MainWindow.h"

class QComboBox;

namespace veloxa::viewer {

class Hand {
  public:
    // Windows are `size` large; pictures go into the folder `out`.
    Hand(QSize size, const QString& out);
    ~Hand();

    MainWindow& window() { return *window_; }
    // Until what was asked for is on the screen and nothing works any more.
    void wait();
    void wait(const std::function<bool()>& done, const QString& what) const;

    // Places of the picture, in its pixels, y upward.
    void press(Point picture) const;
    void move(Point picture) const;
    void release(Point picture) const;
    void click(Point picture) const;
    void zoom(Point picture, int notches) const;
    void click(QWidget& widget) const;
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const;
    void choose(const char* combo, const QString& item) const;
    void press_button(const char* knob) const;
    void take_tool(const char* tool) const;
    // Answers the file dialog that is open.
    void name_file(const QString& file) const;

    template <class Widget>
    Widget& child(const QString& name, const QObject* of = nullptr) const {
        auto* const found = (of == nullptr ? window_.get() : of)->findChild<Widget*>(name);
        if (found == nullptr) fail(name);
        return *found;
    }
    // Waits for a dialog that opens.
    template <class Dialog>
    Dialog& dialog(const QString& name) const {
        wait(
            [&] {
                auto* const found = window_->findChild<Dialog*>(name);
                return found != nullptr && found->isVisible();
            },
            name);
        return child<Dialog>(name);
    }

    // The window, with an open dialog in its middle, or a widget of it, as OUT/NAME.png.
    void keep(const QString& name, QWidget* dialog = nullptr) const;
    void keep_part(const QString& name, QWidget& widget) const;

  private:
    [[noreturn]] static void fail(const QString& what);
    QPoint at(Point picture) const;
    void activate() const;
    void save(const QPixmap& picture, const QString& name) const;

    QString out_;
    std::unique_ptr<MainWindow> window_;
    std::string error_;          // shown instead of a picture
    std::uint64_t whole_ = 0;    // the latest request that is shown whole
    std::uint64_t counted_ = 0;  // and that is counted
};

}  // namespace veloxa::viewer
