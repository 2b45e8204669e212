#include "area/PictureArea.h"

#include <QAccessible>
#include <QLabel>
#include <algorithm>
#include <utility>

#include "area/BoxMode.h"
#include "area/BrushMode.h"
#include "area/NavigateMode.h"
#include "area/PickMode.h"
#include "area/PolygonMode.h"

namespace veloxa::viewer {

PictureArea::PictureArea(QWidget* parent) : QWidget(parent), message_(new QLabel(this)) {
    auto brush = std::make_unique<BrushMode>(*this);
    auto box = std::make_unique<BoxMode>(*this);
    auto polygon = std::make_unique<PolygonMode>(*this);
    brush_ = brush.get();
    box_ = box.get();
    polygon_ = polygon.get();
    modes_ = {std::make_unique<NavigateMode>(*this), std::move(brush), std::move(box),
              std::make_unique<PickMode>(*this), std::move(polygon)};

    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAcceptDrops(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    grabGesture(Qt::PinchGesture);
    setMinimumSize(64, 64);
    setAccessibleName(tr("Picture"));

    message_->setTextFormat(Qt::PlainText);
    message_->setWordWrap(true);
    message_->setAlignment(Qt::AlignCenter);
    message_->setMargin(12);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    message_->setCursor(Qt::ArrowCursor);
    message_->setStyleSheet(
        "background: #3a1616; color: #ffffff; border: 1px solid #ff8a7a; border-radius: 4px;");
    message_->hide();
    show_cursor();
    describe();
}

PictureArea::~PictureArea() = default;

QSize PictureArea::device_size() const {
    return {qRound(width() * ratio()), qRound(height() * ratio())};
}

void PictureArea::fill_room() {
    const QSize size = room().size();
    Geometry geometry = geometry_;
    geometry.width = size.width();
    geometry.height = size.height();
    if (fitted_) geometry = geometry.fitted(format_);
    move_to(geometry, fitted_);
}

void PictureArea::move_to(const Geometry& geometry, bool fitted) {
    fitted_ = fitted;
    if (geometry == geometry_) return;
    geometry_ = geometry;
    update();
    emit geometryChanged();
}

void PictureArea::set_format(const Zo::Image::Format& format) {
    if (format == format_) return;
    format_ = format;
    geometry_.aspect = format.pixel_aspect > 0.0 ? format.pixel_aspect : 1.0;
    if (fitted_) {
        fill_room();
    } else {
        update();
        emit geometryChanged();
    }
}

void PictureArea::set_picture_geometry(const Geometry& geometry) {
    Geometry to = geometry_;
    to.zoom = std::clamp(geometry.zoom, kLeastZoom, kMostZoom);
    to.centre = geometry.centre;
    move_to(to, false);
}

void PictureArea::fit() {
    move_to(geometry_.fitted(format_), true);
}

void PictureArea::show_one_to_one() {
    zoom_by(1.0 / geometry_.zoom);
}

void PictureArea::zoom_by(double factor) {
    const Point middle{0.5 * geometry_.width, 0.5 * geometry_.height};
    move_to(geometry_.zoomed(geometry_.zoom * factor, middle), false);
}

void PictureArea::set_shaded(Pane pane, Shaded shaded, const Geometry& geometry) {
    picture(pane).shaded = std::move(shaded);
    picture(pane).geometry = geometry;
    update();
}

void PictureArea::clear(Pane pane) {
    picture(pane).shaded = {};
    update();
}

void PictureArea::set_panes(Panes panes) {
    if (panes == panes_) return;
    panes_ = panes;
    update();
    fill_room();
    describe();
}

void PictureArea::set_wipe(double wipe) {
    const double clamped = std::clamp(wipe, 0.0, 1.0);
    if (clamped == wipe_) return;
    wipe_ = clamped;
    update();
    emit wipeMoved(wipe_);
}

void PictureArea::set_caption(Pane pane, const QString& caption) {
    picture(pane).caption = caption;
    update();
    describe();
}

void PictureArea::set_message(const QString& message) {
    if (message == message_->text()) return;
    message_->setText(message);
    message_->setAccessibleName(message);
    message_->setVisible(!message.isEmpty());
    place_message();
    describe();
    if (message.isEmpty()) return;
    QAccessibleEvent alert(message_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

QString PictureArea::message() const {
    return message_->text();
}

void PictureArea::place_message() {
    const int most = std::max(width() - 40, 40);
    const int wide = std::min(most, 560);
    const int high = std::min(message_->heightForWidth(wide), std::max(height() - 20, 20));
    message_->setGeometry((width() - wide) / 2, (height() - high) / 2, wide, high);
}

void PictureArea::set_tool(PointerTool tool) {
    if (tool == tool_) return;
    mode().cancel();
    mode().leave();
    if (held_ == Held::kMode) held_ = Held::kNothing;
    tool_ = tool;
    if (!mode().aims()) crosshair_.reset();
    show_cursor();
    describe();
    update();
}

void PictureArea::set_brush_size(int pixels) {
    brush_->set_size(pixels);
    describe();
}

int PictureArea::brush_size() const {
    return brush_->size();
}

void PictureArea::set_box(const Zo::Image::Box& box) {
    box_->set_box(box);
    update();
}

void PictureArea::set_mattes(DrawnMattes mattes) {
    polygon_->set_mattes(std::move(mattes));
}

const DrawnMattes& PictureArea::mattes() const {
    return polygon_->mattes();
}

std::optional<std::size_t> PictureArea::chosen_matte() const {
    return polygon_->chosen();
}

Pane PictureArea::pane_under_pointer() const {
    return room().at(device(mapFromGlobal(QCursor::pos())));
}

void PictureArea::set_new_matte(const DrawnMatte& like) {
    polygon_->set_kind(like);
}

void PictureArea::describe() {
    QStringList lines;
    for (const Pane pane : {Pane::kFirst, Pane::kSecond}) {
        const QString& caption = picture(pane).caption;
        if (!caption.isEmpty() && (pane == Pane::kFirst || panes_ != Panes::kOne)) lines << caption + '.';
    }
    if (!message().isEmpty()) lines << message();
    if (crosshair_) {
        const PixelAt pixel = pixel_at(*crosshair_);
        lines << tr("Crosshair at %1, %2.").arg(pixel.x).arg(pixel.y);
    }
    const QString help = mode().help();
    setAccessibleDescription((lines << help).join(' '));
    setToolTip(help);
    setWhatsThis(help);
}

void PictureArea::show_cursor() {
    const bool moves = space_ || held_ == Held::kPicture;
    if (held_ == Held::kWipe) {
        setCursor(Qt::SplitHCursor);
    } else if (moves) {
        setCursor(held_ == Held::kPicture ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    } else {
        setCursor(mode().cursor());
    }
}

}  // namespace veloxa::viewer
