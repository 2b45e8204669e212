#include "panel/DarkTheme.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>

namespace veloxa::viewer {

namespace {

QColor grey(int level) {
    return QColor(level, level, level);
}

// On a dark ground the style's own outline of a check box is all but black.
class DarkStyle final : public QProxyStyle {
  public:
    DarkStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        if (element != PE_IndicatorCheckBox) return;
        painter->save();
        const bool focused = (option->state & State_HasFocus) != 0;
        painter->setPen(option->palette.color(focused ? QPalette::Link : QPalette::PlaceholderText));
        painter->drawRect(QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5));
        painter->restore();
    }
};

}  // namespace

void use_dark_theme(QApplication& application) {
    QPalette palette;
    palette.setColor(QPalette::Window, grey(50));
    palette.setColor(QPalette::Base, grey(36));
    palette.setColor(QPalette::AlternateBase, grey(44));
    palette.setColor(QPalette::Button, grey(64));
    palette.setColor(QPalette::ToolTipBase, grey(28));
    palette.setColor(QPalette::Light, grey(96));
    palette.setColor(QPalette::Midlight, grey(80));
    palette.setColor(QPalette::Mid, grey(40));
    palette.setColor(QPalette::Dark, grey(30));
    palette.setColor(QPalette::Shadow, grey(16));
    palette.setColor(QPalette::Highlight, QColor(45, 105, 170));
    palette.setColor(QPalette::Link, QColor(125, 185, 245));
    palette.setColor(QPalette::LinkVisited, QColor(200, 165, 235));
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, grey(224));
        palette.setColor(QPalette::Disabled, role, grey(150));
    }
    palette.setColor(QPalette::BrightText, QColor(255, 140, 120));
    palette.setColor(QPalette::HighlightedText, grey(255));
    palette.setColor(QPalette::PlaceholderText, grey(165));
    palette.setColor(QPalette::Disabled, QPalette::PlaceholderText, grey(120));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, grey(70));
    palette.setColor(QPalette::Disabled, QPalette::HighlightedText, grey(190));
    auto* const style = new DarkStyle;
    style->setParent(&application);
    application.setStyle(style);
    application.setPalette(palette);
}

}  // namespace veloxa::viewer
