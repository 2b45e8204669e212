#include "window/Readout.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

namespace veloxa::viewer {

namespace {

QString number(double value, int digits = 6) {
    return QString::number(value, 'g', digits);
}

template <std::size_t N>
QString numbers(const std::array<float, N>& values, int digits = 6) {
    QStringList texts;
    for (const float value : values) texts += number(static_cast<double>(value), digits);
    return texts.join(' ');
}

QString statistics_text(const BoxStatistics& statistics) {
    QStringList texts;
    for (std::size_t c = 0; c < statistics.channels.size(); ++c) {
        const ChannelStatistics& channel = statistics.channels[c];
        texts += QStringLiteral("%1 %2 to %3, mean %4")
                     .arg(QChar("RGBA"[c]))
                     .arg(number(static_cast<double>(channel.least)),
                          number(static_cast<double>(channel.most)), number(channel.mean));
    }
    if (statistics.broken > 0) texts += QStringLiteral("%1 not finite").arg(statistics.broken);
    return texts.join(QStringLiteral("; "));
}

}  // namespace

Readout::Readout(QWidget* parent) : QWidget(parent) {
    auto* const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    auto* const first = new QHBoxLayout;
    const auto label = [&](const char* name, const char* description) {
        auto* const made = new QLabel(this);
        made->setObjectName(QString::fromLatin1(name));
        made->setAccessibleName(QString::fromLatin1(description));
        made->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        made->setFocusPolicy(Qt::NoFocus);
        // A long line must not make the window wide.
        made->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        return made;
    };
    values_ = label("values", "Values under the cursor");
    box_ = label("box", "Values in the box");
    counts_ = label("counts", "State of the matte");
    colour_ = label("colour", "What the values are taken for");
    first->addWidget(values_, 3);
    first->addWidget(colour_, 2);
    colour_->setAlignment(Qt::AlignRight);
    rows->addLayout(first);
    rows->addWidget(counts_);
    rows->addWidget(box_);
    box_->hide();
    counts_->hide();
}

void Readout::show_values(const CursorValues& values) {
    QString text = QStringLiteral("%1, %2").arg(values.x).arg(values.y);
    if (values.source) text += QStringLiteral("   plate ") + numbers(*values.source);
    if (values.result) text += QStringLiteral("   shown ") + numbers(*values.result);
    if (values.displayed) text += QStringLiteral("   on screen ") + numbers(*values.displayed, 3);
    values_->setText(text);
    values_->setToolTip(text);
}

void Readout::clear_values() {
    values_->clear();
}

void Readout::show_box(const Zo::Image::Box& box, const BoxStatistics& source, const BoxStatistics& result) {
    const QString place = QStringLiteral("%1,%2,%3,%4").arg(box.x).arg(box.y).arg(box.r).arg(box.t);
    const QString text = QStringLiteral("box %1   plate %2\nshown %3")
                             .arg(place, statistics_text(source), statistics_text(result));
    box_->setText(text);
    box_->setToolTip(text);
    box_->show();
}

void Readout::clear_box() {
    box_->hide();
    box_->clear();
}

void Readout::show_counts(const std::optional<StatusCounts>& counts) {
    counts_->setVisible(counts.has_value());
    if (!counts) return counts_->clear();
    const QLocale local;
    QString text = QStringLiteral("leaks %1, holes %2; clear %3, solid %4, between %5")
                       .arg(local.toString(static_cast<qlonglong>(counts->leaks)),
                            local.toString(static_cast<qlonglong>(counts->holes)),
                            local.toString(static_cast<qlonglong>(counts->clear)),
                            local.toString(static_cast<qlonglong>(counts->solid)),
                            local.toString(static_cast<qlonglong>(counts->between)));
    if (counts->beyond > 0) text += QStringLiteral(", out of range %1").arg(counts->beyond);
    if (counts->broken > 0) text += QStringLiteral(", NaN %1").arg(counts->broken);
    counts_->setText(text);
    counts_->setToolTip(text);
}

void Readout::show_colour(const QString& account) {
    colour_->setText(account);
    colour_->setToolTip(account);
}

}  // namespace veloxa::viewer
