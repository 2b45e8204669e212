// The samples that an instance's tools have taken, with their places.
#include <algorithm>
#include <cstdint>

#include "instance/Editor.h"

namespace veloxa::ofx {

using namespace Zo::Image;

namespace {

// A list of the clean plate's samples goes with one of the foreground's: their ends belong together.
constexpr std::string_view kPlateList = "_cp";

bool is_list(const Knob& knob) {
    return knob.kind() == Knob::Kind::kCustom && !read_samples(knob.text()).empty();
}

bool holds(const std::string& list, const SampleMark& mark) {
    const SampleWords samples = read_samples(list);
    return std::ranges::find(samples, mark.sample) != samples.end();
}

// Of the pixels that are there.
std::array<double, 3> mean_of(const Image& image, const std::vector<Box>& areas) {
    std::array<double, 4> sum{};
    std::int64_t count = 0;
    for (Box area : areas) {
        area.intersect(image.view().bounds);
        if (area.empty()) continue;
        std::array<std::vector<float>, 4> planes;
        for (auto& plane : planes) plane.resize(static_cast<std::size_t>(area.width()));
        for (int y = area.y; y < area.t; ++y) {
            read_row(image.view(), y, area.x, area.r,
                     {planes[0].data(), planes[1].data(), planes[2].data(), planes[3].data()});
            for (std::size_t c = 0; c < 3; ++c) {
                for (const float v : planes[c]) sum[c] += static_cast<double>(v);
            }
            count += area.width();
        }
    }
    const double scale = count > 0 ? 1.0 / static_cast<double>(count) : 0.0;
    return {sum[0] * scale, sum[1] * scale, sum[2] * scale};
}

}  // namespace

std::vector<SampleMark> Editor::marks_with(const std::string& tool, OfxTime time, const PixelGrid& grid,
                                           const Image& plate, const std::vector<Box>& areas,
                                           const std::vector<Knob*>& changed) {
    std::vector<SampleMark> marks = read_marks(own_.text(kMarks));
    // What lists have lost for good makes room.
    std::erase_if(marks, [&](const SampleMark& mark) {
        const Knob* const list = node_.panel().find(mark.list);
        return list == nullptr || !holds(list->text(), mark);
    });
    for (const Knob* const knob : changed) {
        if (!is_list(*knob) || knob->name().ends_with(kPlateList)) continue;
        const OfxRectD middle = grid.canonical(areas[areas.size() / 2]);
        marks.push_back({tool,
                         knob->name(),
                         read_samples(knob->text()).back(),
                         time,
                         {(middle.x1 + middle.x2) / 2.0, (middle.y1 + middle.y2) / 2.0},
                         mean_of(plate, areas)});
    }
    return marks;
}

std::vector<SampleMark> Editor::marks(std::size_t tool) const {
    std::vector<SampleMark> shown;
    const std::string& name = list().parameters()[tool].name;
    for (SampleMark& mark : read_marks(own_.text(kMarks))) {
        const auto n = parameters_.find(mark.list);
        if (mark.tool != name || !n) continue;
        if (holds(parameters_.value(*n, std::nullopt).text, mark)) shown.push_back(std::move(mark));
    }
    return shown;
}

void Editor::remove(const SampleMark& mark, OfxTime time) {
    edit("remove sample", time, {1.0, 1.0}, [&](const KnobValues&) {
        Knob* const list = node_.panel().find(mark.list);
        if (list == nullptr) return Outcome{};
        SampleWords samples = read_samples(list->text());
        // The newest of those that are alike.
        const auto found = std::find(samples.rbegin(), samples.rend(), mark.sample);
        if (found == samples.rend()) return Outcome{};
        const auto back = found - samples.rbegin();
        samples.erase(std::prev(samples.end(), back + 1));
        list->from_script(write_samples(samples));
        if (Knob* const plates = node_.panel().find(mark.list + std::string(kPlateList))) {
            SampleWords beside = read_samples(plates->text());
            if (back < std::ssize(beside)) beside.erase(std::prev(beside.end(), back + 1));
            plates->from_script(write_samples(beside));
        }
        std::vector<SampleMark> marks = read_marks(own_.text(kMarks));
        const auto last = std::find(marks.rbegin(), marks.rend(), mark);
        if (last != marks.rend()) marks.erase(std::prev(last.base()));
        return Outcome{write_marks(marks), std::nullopt};
    });
}

}  // namespace veloxa::ofx
