// A tab of the panel, which folds; its title has the tab's switch. Without a title, what stands above them.
#pragma once

#include <QToolButton>
#include <QVBoxLayout>
#include <vector>

#include "panel/KnobRow.h"
#include "panel/PanelLayout.h"

namespace veloxa::viewer {

class SectionView final : public QWidget {
    Q_OBJECT

  public:
    SectionView(PanelEdits& edits, const PanelSection& section, QWidget* parent);

    const QString& label() const { return label_; }
    // As the user left it, whatever a search opens for a time.
    bool folded() const { return folded_; }
    void set_folded(bool folded);

    void refresh();
    // Shows what has all of these words, the whole of a tab whose label has; all when there are none. Returns
    // whether any does.
    bool search(const QStringList& words);

  signals:
    void edited();
    void folding_changed();

  private:
    void add_title(PanelEdits& edits, Zo::Image::Knob* enable);
    void show_body(bool open);

    QString label_;
    Zo::Image::Knob* enable_;
    std::vector<KnobRow*> rows_;
    QToolButton* fold_ = nullptr;
    MarkedLabel* title_ = nullptr;
    KnobControl* switch_ = nullptr;
    QWidget* body_;
    bool folded_ = false;
    bool searching_ = false;
};

}  // namespace veloxa::viewer
