// The lines at the window's bottom: the values under the cursor, of the matte's state, of a box.
#pragma once

#include <QWidget>
#include <array>
#include <optional>

#include "picture/BoxStatistics.h"
#include "picture/StatusMatte.h"

class QLabel;

namespace veloxa::viewer {

struct CursorValues {
    int x = 0;
    int y = 0;
    std::optional<std::array<float, 4>> source;     // the plate, as it is stored
    std::optional<std::array<float, 4>> result;     // of the picture in sight, as it was keyed
    std::optional<std::array<float, 3>> displayed;  // of that, for the screen: 0 to 1
};

class Readout final : public QWidget {
    Q_OBJECT

  public:
    explicit Readout(QWidget* parent = nullptr);

    void show_values(const CursorValues& values);
    void clear_values();
    void show_box(const Zo::Image::Box& box, const BoxStatistics& source, const BoxStatistics& result);
    void clear_box();
    void show_counts(const std::optional<StatusCounts>& counts);
    void show_colour(const QString& account);

  private:
    QLabel* values_;
    QLabel* box_;
    QLabel* counts_;
    QLabel* colour_;
};

}  // namespace veloxa::viewer
