// What is rendered to which files.
#pragma once

#include <QDialog>
#include <optional>

#include "session/Jobs.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

namespace veloxa::viewer {

class RenderDialog final : public QDialog {
    Q_OBJECT

  public:
    // `frames` of the shot; empty for a still.
    RenderDialog(const QString& frames, const QString& folder, QWidget* parent = nullptr);

    // Without the state. Throws UsageError for outputs that cannot be.
    RenderPlan plan() const;
    void accept() override;

  private:
    QLineEdit* add_output(const QString& caption, const QString& folder, const QString& description);

    QLineEdit* frames_;
    QLineEdit* result_;
    QLineEdit* comp_;
    QLineEdit* matte_;
    QLineEdit* cut_;
    QComboBox* depth_;
    QCheckBox* resume_;
    QCheckBox* overwrite_;
    QLabel* fault_;
};

}  // namespace veloxa::viewer
