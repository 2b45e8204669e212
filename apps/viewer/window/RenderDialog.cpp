#include "window/RenderDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <array>
#include <utility>

#include "shot/Errors.h"
#include "shot/frames/FramePattern.h"
#include "shot/sequence/KeyOutput.h"

namespace veloxa::viewer {

RenderDialog::RenderDialog(const QString& frames, const QString& folder, QWidget* parent)
    : QDialog(parent), frames_(new QLineEdit(frames, this)) {
    setWindowTitle(QStringLiteral("Render"));
    setObjectName(QStringLiteral("render_dialog"));
    auto* const form = new QFormLayout(this);
    frames_->setAccessibleName(QStringLiteral("Frames"));
    frames_->setToolTip(QStringLiteral("A-B, or A-BxN for every Nth"));
    frames_->setPlaceholderText(QStringLiteral("One picture"));
    frames_->setEnabled(!frames.isEmpty());
    form->addRow(QStringLiteral("&Frames"), frames_);
    result_ = add_output(QStringLiteral("&Result"), folder, QStringLiteral("What the output mode says"));
    comp_ =
        add_output(QStringLiteral("&Composite"), folder, QStringLiteral("The subject over the background"));
    matte_ = add_output(QStringLiteral("&Matte"), folder, QStringLiteral("The matte as one channel"));
    cut_ = add_output(QStringLiteral("C&ut"), folder, QStringLiteral("The subject alone, premultiplied"));
    depth_ = new QComboBox(this);
    depth_->addItems({QStringLiteral("as the format usually has them"), QStringLiteral("half"),
                      QStringLiteral("float"), QStringLiteral("uint8"), QStringLiteral("uint10"),
                      QStringLiteral("uint12"), QStringLiteral("uint16")});
    depth_->setAccessibleName(QStringLiteral("Samples"));
    depth_->setToolTip(QStringLiteral("How the samples are stored"));
    form->addRow(QStringLiteral("&Samples"), depth_);
    resume_ = new QCheckBox(QStringLiteral("Leave out frames that are &whole already"), this);
    overwrite_ = new QCheckBox(QStringLiteral("Replace files that e&xist"), this);
    form->addRow(resume_);
    form->addRow(overwrite_);
    fault_ = new QLabel(this);
    fault_->setWordWrap(true);
    fault_->setAccessibleName(QStringLiteral("What is wrong"));
    form->addRow(fault_);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("Render"));
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resize(640, sizeHint().height());
}

QLineEdit* RenderDialog::add_output(const QString& caption, const QString& folder,
                                    const QString& description) {
    auto* const line = new QLineEdit(this);
    const QString name = QString(caption).remove('&');
    line->setObjectName(name.toLower());
    line->setAccessibleName(name);
    line->setToolTip(description + QStringLiteral("; #### stands for the frame's number"));
    line->setPlaceholderText(description);
    auto* const browse = new QToolButton(this);
    browse->setText(QStringLiteral("…"));
    browse->setAccessibleName(QStringLiteral("Choose the file of the %1").arg(name.toLower()));
    browse->setToolTip(QStringLiteral("Choose a folder and name"));
    connect(browse, &QToolButton::clicked, this, [this, line, folder] {
        auto* const dialog = new QFileDialog(this, QStringLiteral("Render to"), folder);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setAcceptMode(QFileDialog::AcceptSave);
        dialog->setOption(QFileDialog::DontConfirmOverwrite);
        connect(dialog, &QFileDialog::fileSelected, line, &QLineEdit::setText);
        dialog->open();
    });
    auto* const row = new QHBoxLayout;
    row->addWidget(line);
    row->addWidget(browse);
    auto* const label = new QLabel(caption, this);
    label->setBuddy(line);
    static_cast<QFormLayout*>(layout())->addRow(label, row);
    return line;
}

RenderPlan RenderDialog::plan() const {
    RenderPlan plan;
    plan.frames = frames_->text().trimmed().toStdString();
    if (!plan.frames.empty()) static_cast<void>(parse_frames(plan.frames));
    const std::array<std::pair<const char*, QLineEdit*>, 4> outputs{
        {{"", result_}, {"comp=", comp_}, {"matte=", matte_}, {"cut=", cut_}}};
    for (const auto& [prefix, line] : outputs) {
        if (!line->text().trimmed().isEmpty())
            plan.outputs.push_back(prefix + line->text().trimmed().toStdString());
    }
    if (plan.outputs.empty()) throw UsageError("Name a file for at least one of the pictures.");
    for (const KeyOutput& output : parse_outputs(plan.outputs)) {
        if (plan.frames.empty() || output.file.has_frame()) continue;
        if (parse_frames(plan.frames).count() > 1) {
            throw UsageError(output.file.name() + ": several frames need a pattern such as ####");
        }
    }
    set_depth(plan.how, depth_->currentIndex() == 0 ? std::string() : depth_->currentText().toStdString());
    plan.resume = resume_->isChecked();
    plan.how.overwrite = overwrite_->isChecked() || plan.resume;
    return plan;
}

void RenderDialog::accept() {
    try {
        static_cast<void>(plan());
        QDialog::accept();
    } catch (const Error& error) {
        fault_->setText(QString::fromUtf8(error.what()));
    }
}

}  // namespace veloxa::viewer
