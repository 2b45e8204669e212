// The panel of the node, made from its knobs alone: sections that fold, one a tab, in one column that
// scrolls, with a search above. Window thread.
//
// Controls write through PanelEdits, which must outlive the view, and after each edit the view reads all of
// its knobs again. Whoever changes knobs by another way calls refresh(). A knob that is disabled is grey, one
// that is hidden hides.
#pragma once

#include <QLineEdit>
#include <QScrollArea>
#include <QStringList>
#include <QWidget>
#include <vector>

#include "panel/SectionView.h"
#include "session/PanelEdits.h"

class QLabel;

namespace veloxa::viewer {

class PanelView final : public QWidget {
    Q_OBJECT

  public:
    explicit PanelView(PanelEdits& edits, QWidget* parent = nullptr);

    // Shows the knobs as they stand; writes nothing, signals nothing.
    void refresh();
    // Makes all controls anew, for another panel of the edits; the knobs of the one before may be gone.
    void rebuild();

    // The labels of the tabs that the user has folded, for the owner to keep; labels that no tab has do no
    // harm.
    QStringList folded() const;
    void set_folded(const QStringList& labels);

  public slots:
    void focus_search();

  signals:
    // A control has written; other views may have to show it.
    void edited();
    void folding_changed();

  private:
    void search();

    PanelEdits& edits_;
    QLineEdit* search_;
    QLabel* nothing_;
    QScrollArea* scroll_;
    std::vector<SectionView*> sections_;
};

}  // namespace veloxa::viewer
