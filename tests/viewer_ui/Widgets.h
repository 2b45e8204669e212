// What tests of widgets do with those that they are not given.
#pragma once

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>

namespace test {

// The first that goes by an accessible name; null for none.
template <class Widget>
Widget* named(const QWidget& parent, const QString& name) {
    for (auto* const widget : parent.findChildren<Widget*>()) {
        if (widget->accessibleName() == name) return widget;
    }
    return nullptr;
}

// Whether it says that it takes them.
inline bool drop(QWidget& on, const QList<QUrl>& urls) {
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    enter.setAccepted(false);
    QApplication::sendEvent(&on, &enter);
    QDropEvent event({5.0, 5.0}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&on, &event);
    return enter.isAccepted();
}

}  // namespace test
