#include "ZoImage/ToolReport.h"

#include <algorithm>

namespace Zo::Image {

namespace {

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string title_of(const ToolReport& report) {
    std::string title = report.tool + " @" + std::to_string(report.frame) + " ";
    for (const int edge : {report.box.x, report.box.y, report.box.r, report.box.t}) {
        title += (title.back() == ' ' ? "" : ",") + std::to_string(edge);
    }
    if (report.samples() == 0) return title + "\n";
    title += ": " + std::to_string(report.satisfied) + " samples satisfied, " +
             std::to_string(report.unsatisfied) + " not";
    if (report.unusable > 0) title += ", " + std::to_string(report.unusable) + " unusable";
    return title + "\n";
}

}  // namespace

std::string text_of(const KnobChange& change, std::size_t knobs, std::size_t values) {
    return "  " + padded(change.knob, knobs) + "  " + padded(change.before, values) + "  " + change.after +
           "\n";
}

std::string text_of(const ToolReport& report, std::size_t knobs, std::size_t values) {
    for (const KnobChange& change : report.changes) {
        knobs = std::max(knobs, change.knob.size());
        values = std::max(values, change.before.size());
    }
    std::string text = title_of(report);
    for (const KnobChange& change : report.changes) text += text_of(change, knobs, values);
    for (const std::string& note : report.notes) text += "  note: " + note + "\n";
    return text;
}

}  // namespace Zo::Image
