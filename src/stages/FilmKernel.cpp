#include "stages/FilmKernel.h"

#include "controls/Controls.h"

FilmParams film_params(const ControlBlock& controls) {
    const auto percent = [&](int index) { return controls.get(index) / 100.0; };
    return {percent(controls::kFilmStrength), percent(controls::kFilmCorrectionBlue),
            percent(controls::kFilmCorrectionGreen), percent(controls::kFilmCorrectionRed)};
}

LANE_KERNEL(FilmExtreme, film_lowest);
LANE_KERNEL(FilmExtreme, film_highest);
LANE_KERNEL(FilmCorrect, film_correct);
