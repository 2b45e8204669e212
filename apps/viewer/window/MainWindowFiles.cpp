// Files of the window: opening, saving, rendering, what a killed session left.
#include <QActionGroup>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileDialog>
#include <QInputDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <utility>

#include "shot/Errors.h"
#include "timeline/TimeLine.h"
#include "window/Commands.h"
#include "window/JobsView.h"
#include "window/MainWindow.h"
#include "window/RenderDialog.h"

namespace veloxa::viewer {

namespace {

constexpr qsizetype kRecent = 10;
constexpr std::array<std::pair<const char*, Input>, 4> kOthers{
    {{"open_cp", kCp}, {"open_bg", kBg}, {"open_gm", kGm}, {"open_hm", kHm}}};
// By the words of --fit.
constexpr std::array<std::pair<const char*, const char*>, 4> kFits{
    {{"fit_refuse", ""}, {"fit_resize", "resize"}, {"fit_crop", "crop"}, {"fit_none", "none"}}};

}  // namespace

void MainWindow::wire_files() {
    Commands& commands = *commands_;
    const auto on = [&](const char* name, auto call) {
        connect(&commands[name], &QAction::triggered, this, call);
    };
    on("open",
       [this] { ask_for_file(QStringLiteral("Open"), [this](const QString& file) { open_files({file}); }); });
    for (const auto& [name, input] : kOthers) {
        on(name, [this, input = input] {
            ask_for_file(QStringLiteral("Open"), [this, input](const QString& file) {
                session_->open_input(input, file.toStdString());
            });
        });
    }
    on("close_others", [this] {
        ShotFiles files = session_->files();
        for (const auto& [name, input] : kOthers) files.inputs[input].clear();
        session_->set_files(files, "close all but the plate");
    });
    auto* const fits = new QActionGroup(this);
    for (const auto& [name, fit] : kFits) {
        fits->addAction(&commands[name]);
        on(name, [this, fit = fit] {
            ShotFiles files = session_->files();
            files.fit = fit;
            session_->set_files(files, "inputs of another size");
        });
    }
    on("reload", [this] { session_->set_files(session_->files(), "reload"); });
    on("load_settings", [this] {
        ask_for_file(QStringLiteral("Load settings"),
                     [this](const QString& file) { session_->load_settings(file.toStdString()); });
    });
    on("save", [this] { save(); });
    on("save_as", [this] { save_as(); });
    on("write_garbage", [this] { write_matte(DrawnMatte::Kind::kGarbage); });
    on("write_holdout", [this] { write_matte(DrawnMatte::Kind::kHoldout); });
    on("render", [this] { render(); });
    on("quit", [this] { close(); });
    on("worst", [this] { find_worst(); });
    on("cancel_jobs", [this] { jobs_->cancel(); });
    connect(jobs_view_, &JobsView::cancelled, this, [this] { jobs_->cancel(); });
    connect(jobs_view_, &JobsView::frame_chosen, this, [this](int frame) { time_->go_to(frame); });
}

void MainWindow::show_fit() {
    for (const auto& [name, fit] : kFits) (*commands_)[name].setChecked(session_->files().fit == fit);
}

void MainWindow::ask_for_file(const QString& title, const std::function<void(const QString&)>& use,
                              bool save) {
    auto* const dialog = new QFileDialog(this, title, kept_->value(QStringLiteral("folder")).toString());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectName(QStringLiteral("file_dialog"));
    dialog->setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (save) dialog->setAcceptMode(QFileDialog::AcceptSave);
    connect(dialog, &QFileDialog::fileSelected, this, [this, use](const QString& file) {
        kept_->setValue(QStringLiteral("folder"), QFileInfo(file).absolutePath());
        use(file);
    });
    dialog->open();
}

void MainWindow::open_files(const QStringList& files) {
    if (files.isEmpty()) return;
    const QString& file = files.front();
    const auto open = [this, file] {
        tell({});
        remember(file);
        session_->open_file(file.toStdString());
    };
    if (session_->files().inputs[kFg].empty()) return with_changes_kept(open);
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName(QStringLiteral("open_as"));
    menu->addAction(QStringLiteral("Open as &plate or settings"), this,
                    [this, open] { with_changes_kept(open); });
    for (const auto& [name, input] : kOthers) {
        const QString text =
            QStringLiteral("Open as ") + (*commands_)[name].text().remove(QStringLiteral("…")).toLower();
        menu->addAction(text, this,
                        [this, file, input = input] { session_->open_input(input, file.toStdString()); });
    }
    menu->popup(QCursor::pos());
}

void MainWindow::remember(const QString& file) {
    QStringList recent = kept_->value(QStringLiteral("recent")).toStringList();
    recent.removeAll(file);
    recent.prepend(file);
    kept_->setValue(QStringLiteral("recent"), QStringList(recent.mid(0, kRecent)));
    show_recent();
}

void MainWindow::show_recent() {
    recent_->clear();
    for (const QString& file : kept_->value(QStringLiteral("recent")).toStringList()) {
        recent_->addAction(QString(file).replace('&', QStringLiteral("&&")), this, [this, file] {
            with_changes_kept([this, file] {
                tell({});
                remember(file);
                session_->open_file(file.toStdString());
            });
        });
    }
    recent_->setEnabled(!recent_->isEmpty());
}

void MainWindow::save(const std::function<void()>& then) {
    if (session_->document().empty()) return save_as(then);
    session_->save(session_->document(), [this, then](const std::string& error) {
        if (!error.empty()) return tell(QString::fromStdString(error));
        remember(QString::fromStdString(session_->document()));
        if (then) then();
    });
}

void MainWindow::save_as(const std::function<void()>& then) {
    const auto use = [this, then](QString file) {
        if (QFileInfo(file).suffix().isEmpty()) file += QStringLiteral(".veloxa");
        session_->save(file.toStdString(), [this, then](const std::string& error) {
            if (!error.empty()) return tell(QString::fromStdString(error));
            remember(QString::fromStdString(session_->document()));
            if (then) then();
        });
    };
    ask_for_file(QStringLiteral("Save settings"), use, true);
}

void MainWindow::with_changes_kept(const std::function<void()>& then) {
    if (!session_->modified()) return then();
    auto* const box = new QMessageBox(QMessageBox::Question, QStringLiteral("Unsaved changes"),
                                      QStringLiteral("The settings have changes that are not saved."),
                                      QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName(QStringLiteral("unsaved"));
    connect(box, &QMessageBox::finished, this, [this, then](int answer) {
        if (answer == QMessageBox::Save) save(then);
        if (answer == QMessageBox::Discard) then();
    });
    box->open();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!closing_ && (session_->modified() || jobs_->running())) {
        event->ignore();
        const auto go = [this] {
            closing_ = true;
            close();
        };
        if (!jobs_->running()) return with_changes_kept(go);
        auto* const box = new QMessageBox(QMessageBox::Question, QStringLiteral("Background work"),
                                          QStringLiteral("Frames are still being rendered. Give that up?"),
                                          QMessageBox::Yes | QMessageBox::No, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setObjectName(QStringLiteral("still_working"));
        connect(box, &QMessageBox::finished, this, [this, go](int answer) {
            if (answer == QMessageBox::Yes) with_changes_kept(go);
        });
        return box->open();
    }
    save_layout();
    event->accept();
}

void MainWindow::offer_rescue() {
    if (place_.rescue_folder.isEmpty()) return;
    session_->find_rescued([this](const std::vector<Rescued>& left) {
        if (!left.empty()) offer(left.front());
    });
}

void MainWindow::offer(const Rescued& rescued) {
    const QString name =
        rescued.document.empty() ? QStringLiteral("never saved") : QString::fromStdString(rescued.document);
    auto* const box =
        new QMessageBox(QMessageBox::Question, QStringLiteral("Restore"),
                        QStringLiteral("A session ended before its changes were saved (%1).").arg(name),
                        QMessageBox::NoButton, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName(QStringLiteral("rescue"));
    QPushButton* const restore = box->addButton(QStringLiteral("&Restore"), QMessageBox::AcceptRole);
    QPushButton* const discard = box->addButton(QStringLiteral("&Discard"), QMessageBox::DestructiveRole);
    box->addButton(QStringLiteral("&Later"), QMessageBox::RejectRole);
    connect(box, &QMessageBox::finished, this, [=, this] {
        if (box->clickedButton() == restore) session_->rescue(rescued);
        if (box->clickedButton() == discard) session_->discard(rescued);
    });
    box->open();
}

void MainWindow::write_matte(DrawnMatte::Kind kind) {
    const auto use = [this, kind](const QString& file) {
        session_->write_matte(kind, file.toStdString(), [this, file](const std::string& error) {
            tell(error.empty() ? file + QStringLiteral(": written") : QString::fromStdString(error));
        });
    };
    ask_for_file(QStringLiteral("Write matte"), use, true);
}

void MainWindow::render() {
    if (session_->files().inputs[kFg].empty()) return tell(QStringLiteral("Open a plate first."));
    auto* const dialog = new RenderDialog(QString::fromStdString(session_->files().frames),
                                          kept_->value(QStringLiteral("folder")).toString(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { start(dialog->plan()); });
    dialog->open();
}

void MainWindow::start(RenderPlan plan) {
    plan.state = session_->state();
    plan.program = place_.program.toStdString();
    jobs_dock_->show();
    jobs_dock_->raise();
    jobs_view_->begin(QStringLiteral("Rendering…"));
    JobEvents events;
    events.progress = [this](double done, int all) { jobs_view_->show_progress(done, all); };
    events.line = [this](const std::string& line) { jobs_view_->add_line(QString::fromStdString(line)); };
    events.done = [this](const std::string& outcome) {
        jobs_view_->end(outcome.empty()
                            ? QStringLiteral("Rendered.")
                            : QStringLiteral("Rendering ended: ") + QString::fromStdString(outcome));
    };
    try {
        jobs_->render(std::move(plan), std::move(events));
    } catch (const Error& error) {
        jobs_view_->end(QString::fromUtf8(error.what()));
    }
}

void MainWindow::find_worst() {
    if (session_->files().inputs[kFg].empty()) return tell(QStringLiteral("Open a plate first."));
    const int count = session_->range().count();
    if (count < 2) return look_for_worst(1);
    auto* const dialog = new QInputDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectName(QStringLiteral("worst_dialog"));
    dialog->setWindowTitle(QStringLiteral("Find worst frames"));
    dialog->setLabelText(QStringLiteral("At most so many frames, spread over the shot:"));
    dialog->setIntRange(1, count);
    dialog->setIntValue(std::min(count, 24));
    connect(dialog, &QInputDialog::intValueSelected, this, &MainWindow::look_for_worst);
    dialog->open();
}

void MainWindow::look_for_worst(int most) {
    jobs_dock_->show();
    jobs_dock_->raise();
    jobs_view_->begin(QStringLiteral("Looking for the worst frames…"));
    JobEvents events;
    events.progress = [this](double done, int all) { jobs_view_->show_progress(done, all); };
    events.worst = [this](const std::vector<WorstFrame>& frames) {
        jobs_view_->show_worst(frames);
        const auto worst = std::min_element(frames.begin(), frames.end());
        if (worst != frames.end()) time_->set_worst(worst->frame);
    };
    events.done = [this](const std::string& outcome) {
        jobs_view_->end(outcome.empty() ? QStringLiteral("Looked at all of them.")
                                        : QStringLiteral("Ended: ") + QString::fromStdString(outcome));
    };
    jobs_->find_worst(session_->state(), most, std::move(events));
}

}  // namespace veloxa::viewer
