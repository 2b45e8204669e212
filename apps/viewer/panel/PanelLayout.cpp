#include "panel/PanelLayout.h"

#include <QStringList>
#include <QTextDocument>

#include "ZoImage/KnobDisplay.h"

namespace veloxa::viewer {

using namespace Zo::Image;
using Kind = Knob::Kind;

namespace {

constexpr qsizetype kColumns = 72;

QString wrapped(const QString& text) {
    QString result;
    for (const QString& line : text.split('\n')) {
        qsizetype column = 0;
        for (const QString& word : line.split(' ')) {
            if (column > 0 && column + 1 + word.size() > kColumns) {
                result += '\n';
                column = 0;
            } else if (column > 0) {
                result += ' ';
                ++column;
            }
            result += word;
            column += word.size();
        }
        result += '\n';
    }
    return result;
}

bool switches(const Knob& knob) {
    const bool kind = knob.kind() == Kind::kLink || knob.kind() == Kind::kBool;
    return kind && knob.target().kind() == Kind::kBool;
}

}  // namespace

PanelLayout lay_out(const KnobPanel& panel) {
    PanelLayout layout;
    layout.sections.emplace_back();
    bool in_toolbar = false;
    bool on_tab = false;
    for (const auto& owned : panel.knobs()) {
        Knob* const knob = owned.get();
        if (knob->kind() == Kind::kBeginToolbar) {
            if (!layout.toolbar.empty()) layout.toolbar.push_back(nullptr);
            in_toolbar = true;
        } else if (knob->kind() == Kind::kEndToolbar) {
            in_toolbar = on_tab = false;
        } else if (in_toolbar) {
            layout.toolbar.push_back(knob);
        } else if (knob->kind() == Kind::kTab) {
            on_tab = true;
            layout.sections.push_back({knob->label(), nullptr, {}});
        } else if (knob->kind() == Kind::kButton && knob->flag(kKnobLooks) && !on_tab) {
            layout.actions.push_back(knob);
        } else if (knob->kind() != Kind::kCustom) {
            PanelSection& section = on_tab ? layout.sections.back() : layout.sections.front();
            const bool first = section.knobs.empty() && section.enable == nullptr;
            if (on_tab && first && switches(*knob)) {
                section.enable = knob;
            } else {
                section.knobs.push_back(knob);
            }
        }
    }
    return layout;
}

QString label_of(const Knob& knob) {
    const std::string& label = knob.label().empty() ? knob.target().label() : knob.label();
    return QString::fromStdString(knob.kind() == Kind::kToolButton ? tool_label(label).word : label)
        .trimmed();
}

QString full_name(const Knob& knob, const QString& section) {
    const QString label = label_of(knob);
    return section.isEmpty() ? label : label + ", " + section;
}

QString explanation(const Knob& knob) {
    const std::string& tooltip = knob.tooltip().empty() ? knob.target().tooltip() : knob.tooltip();
    QString text = tooltip.empty() ? QString() : wrapped(QString::fromStdString(plain_text(tooltip)));
    text += QString::fromStdString(knob.name());
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

}  // namespace veloxa::viewer
