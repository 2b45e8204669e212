#include "shots/Hand.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QWheelEvent>
#include <QWindow>
#include <algorithm>
#include <stdexcept>

#include "area/PictureArea.h"
#include "panel/ToolBarView.h"

namespace veloxa::viewer {

namespace {

constexpr int kPatience = 60'000;  // milliseconds
constexpr int kNotch = 120;        // of a wheel, as Qt counts

}  // namespace

Hand::Hand(QSize size, const QString& out) : out_(out) {
    WindowPlace place;
    place.settings_file = out + QStringLiteral("/layout.ini");
    window_ = std::make_unique<MainWindow>(place);
    window_->resize(size);
    window_->show();
    activate();
    SessionEvents& events = window_->session().events;
    events.shown = [this, show = events.shown](ViewResult& result) {
        if (result.whole && !result.counts) whole_ = std::max(whole_, result.number);
        if (result.counts) counted_ = std::max(counted_, result.number);
        if (!result.error.empty()) error_ = result.error;
        show(result);
    };
}

Hand::~Hand() = default;

void Hand::fail(const QString& what) {
    throw std::runtime_error("there is no " + what.toStdString());
}

void Hand::wait(const std::function<bool()>& done, const QString& what) const {
    if (!QTest::qWaitFor(done, kPatience)) fail(what);
}

void Hand::wait() {
    Session& session = window_->session();
    const bool counts = child<QAction>(QStringLiteral("counts")).isChecked();
    wait(
        [&] {
            if (!error_.empty()) throw std::runtime_error(error_);
            const std::uint64_t latest = session.latest_request();
            return !session.working() && session.current_frame() && whole_ >= latest &&
                   (counted_ >= latest || !counts);
        },
        QStringLiteral("whole picture"));
    QCoreApplication::processEvents();
}

QPoint Hand::at(Point picture) const {
    const PictureArea& area = window_->area();
    const Point place = area.picture_geometry().to_area(picture);
    const QPoint in_area = (QPointF(place.x, place.y) / area.ratio()).toPoint();
    if (!area.rect().contains(in_area)) fail(QStringLiteral("place of the picture in sight there"));
    return area.mapTo(window_.get(), in_area);
}

void Hand::press(Point picture) const {
    QTest::mousePress(window_->windowHandle(), Qt::LeftButton, {}, at(picture));
}

void Hand::move(Point picture) const {
    QTest::mouseMove(window_->windowHandle(), at(picture));
}

void Hand::release(Point picture) const {
    QTest::mouseRelease(window_->windowHandle(), Qt::LeftButton, {}, at(picture));
}

void Hand::click(Point picture) const {
    move(picture);
    press(picture);
    release(picture);
}

void Hand::zoom(Point picture, int notches) const {
    QWidget& area = window_->area();
    const QPoint place = area.mapFrom(window_.get(), at(picture));
    QWheelEvent event(place, area.mapToGlobal(place), {}, {0, notches * kNotch}, {}, {}, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(&area, &event);
}

void Hand::click(QWidget& widget) const {
    if (widget.visibleRegion().isEmpty()) fail(widget.objectName() + QStringLiteral(" in sight"));
    QTest::mouseClick(widget.window()->windowHandle(), Qt::LeftButton, {},
                      widget.mapTo(widget.window(), widget.rect().center()));
}

void Hand::key(Qt::Key key, Qt::KeyboardModifiers modifiers) const {
    QTest::keyClick(window_->windowHandle(), key, modifiers);
}

void Hand::choose(const char* combo, const QString& item) const {
    auto& box = child<QComboBox>(QLatin1String(combo));
    const int to = box.findText(item);
    if (to < 0) fail(item);
    while (box.currentIndex() != to)
        QTest::keyClick(&box, box.currentIndex() < to ? Qt::Key_Down : Qt::Key_Up);
}

void Hand::take_tool(const char* tool) const {
    auto& bar = child<QToolBar>(QStringLiteral("tool_bar"));
    QWidget* const button = bar.widgetForAction(&child<QAction>(QLatin1String(tool)));
    if (button == nullptr || !button->isVisible()) fail(QLatin1String(tool));
    click(*button);
}

void Hand::press_button(const char* knob) const {
    click(child<QToolButton>(QString(), &child<QWidget>(QLatin1String(knob))));
}

void Hand::name_file(const QString& file) const {
    auto& box = dialog<QFileDialog>(QStringLiteral("file_dialog"));
    auto& name = child<QLineEdit>(QStringLiteral("fileNameEdit"), &box);
    name.setText(file);
    QTest::keyClick(&name, Qt::Key_Return);
    // It deletes itself.
    wait([this] { return window_->findChild<QFileDialog*>(QStringLiteral("file_dialog")) == nullptr; },
         QStringLiteral("end of the file dialog"));
    activate();
}

// There is no window manager to do it.
void Hand::activate() const {
    window_->activateWindow();
    wait([this] { return window_->isActiveWindow(); }, QStringLiteral("window"));
}

void Hand::save(const QPixmap& picture, const QString& name) const {
    const QString file = out_ + '/' + name + QStringLiteral(".png");
    if (!picture.save(file)) throw std::runtime_error(file.toStdString() + ": cannot be written");
}

void Hand::keep(const QString& name, QWidget* dialog) const {
    QPixmap picture = window_->grab();
    if (dialog != nullptr) {
        const QPixmap front = dialog->grab();
        const QPoint middle = window_->rect().center() - dialog->rect().center();
        QPainter painter(&picture);
        painter.fillRect(QRect(middle, dialog->size()).adjusted(-1, -1, 1, 1), QColor(130, 130, 130));
        painter.drawPixmap(middle, front);
    }
    save(picture, name);
}

void Hand::keep_part(const QString& name, QWidget& widget) const {
    save(widget.grab(), name);
}

}  // namespace veloxa::viewer
