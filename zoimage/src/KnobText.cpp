// Knob values as text: what scripts and command lines hold.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>
#include <system_error>

#include "Text.h"
#include "ZoImage/Knob.h"
#include "ZoImage/NearestName.h"

namespace Zo::Image {

namespace {

constexpr std::string_view kBraces = "{}";

// A leading plus is how people write numbers, but from_chars knows none.
std::string_view without_plus(std::string_view word) {
    if (word.size() > 1 && word[0] == '+' && word[1] != '-' && word[1] != '+') word.remove_prefix(1);
    return word;
}

template <class T>
std::errc parse(std::string_view word, T& value) {
    word = without_plus(word);
    const auto result = std::from_chars(word.data(), word.data() + word.size(), value);
    if (result.ec != std::errc()) return result.ec;
    return result.ptr == word.data() + word.size() ? std::errc() : std::errc::invalid_argument;
}

// A float is read as one: by way of a double it could be rounded twice. Only where that finds no float, below
// the smallest, is the double taken.
std::string parse_number(std::string_view word, bool single, double& value) {
    if (word.empty()) return "a number is missing";
    if (!Knob::to_double(word, value)) return quoted(word) + " is not a number";
    if (!std::isfinite(value)) return quoted(word) + " is not finite";
    if (!single) return {};
    float narrow = 0.0f;
    if (parse(word, narrow) != std::errc()) {
        if (std::abs(value) > 1.0) return quoted(word) + " is too large";
        narrow = static_cast<float>(value);
    }
    if (!std::isfinite(narrow)) return quoted(word) + " is too large";
    value = static_cast<double>(narrow);
    return {};
}

std::string_view unbraced(std::string_view text) {
    text = trim(text);
    if (text.size() >= 2 && text.front() == '{' && text.back() == '}') {
        text = trim(text.substr(1, text.size() - 2));
    }
    return text;
}

std::string_view unquoted(std::string_view text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
    return text;
}

// Words between blanks; a comma separates too, and one without a word on either side leaves an empty word.
std::vector<std::string_view> number_words(std::string_view text) {
    std::vector<std::string_view> words;
    bool after_comma = false;
    while (true) {
        text = trim(text);
        if (text.empty()) break;
        const auto end =
            std::find_if(text.begin(), text.end(), [](char c) { return c == ',' || is_blank(c); });
        const auto length = static_cast<std::size_t>(end - text.begin());
        if (length > 0 || after_comma || words.empty()) words.push_back(text.substr(0, length));
        text = trim(text.substr(length));
        after_comma = !text.empty() && text.front() == ',';
        if (after_comma) text.remove_prefix(1);
    }
    if (after_comma) words.emplace_back();
    return words;
}

template <class T>
void write_number(std::ostream& out, T value) {
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    out.write(buffer.data(), end - buffer.data());
}

template <class T>
void write_numbers(std::ostream& out, std::span<const T> values, bool quote) {
    const bool braces = quote && values.size() > 1;
    if (braces) out << '{';
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0) out << ' ';
        write_number(out, values[i]);
    }
    if (braces) out << '}';
}

void write_item(std::ostream& out, const Knob& knob, bool quote) {
    const double index = knob.get_value();
    const std::vector<std::string>& items = knob.items();
    const bool known = index >= 0.0 && index < static_cast<double>(items.size());
    const std::string item = known ? items[static_cast<std::size_t>(index)] : std::string();
    const bool plain = item.find_first_of(" \t#{}\"") == std::string::npos && !item.empty();
    if (!known || item.find('"') != std::string::npos) {
        write_number(out, index);
    } else if (plain || !quote) {
        out << item;
    } else {
        out << '"' << item << '"';
    }
}

}  // namespace

void Knob::Script_List(std::string_view text, std::vector<std::string>& words) {
    words.clear();
    std::size_t i = 0;
    while (i < text.size()) {
        if (is_blank(text[i]) || kBraces.find(text[i]) != std::string_view::npos) {
            ++i;
        } else if (text[i] == '"') {
            const std::size_t end = std::min(text.find('"', i + 1), text.size());
            words.emplace_back(text.substr(i + 1, end - i - 1));
            i = end + 1;
        } else {
            const std::size_t end = std::min(text.find_first_of(" \t\r\n\f\v{}\"", i), text.size());
            words.emplace_back(text.substr(i, end - i));
            i = end;
        }
    }
}

bool Knob::to_double(std::string_view word, double& value) {
    double parsed = 0.0;
    if (parse(word, parsed) != std::errc()) return false;
    value = parsed;
    return true;
}

std::string Knob::parse_text(std::string_view text, std::vector<double>& values) const {
    values.clear();
    switch (target().kind_) {
        case Kind::kBool:
            return target().parse_bool(text, values);
        case Kind::kMenu:
            return target().parse_menu(text, values);
        case Kind::kFloat:
        case Kind::kColor:
        case Kind::kColorAlpha:
        case Kind::kWidthHeight:
            return target().parse_numbers(text, values);
        case Kind::kCustom:
            return target().accepts_script(text) ? std::string() : "does not take " + quoted(text);
        default: {
            std::string kind = kind_name(kind_);
            std::replace(kind.begin(), kind.end(), '_', ' ');
            return "takes no value: it is a " + kind;
        }
    }
}

std::string Knob::parse_bool(std::string_view text, std::vector<double>& values) const {
    const std::string_view word = unbraced(text);
    if (word == "1" || word == "true") {
        values = {1.0};
    } else if (word == "0" || word == "false") {
        values = {0.0};
    } else {
        return "takes true or false; got " + quoted(word);
    }
    return {};
}

std::string Knob::parse_menu(std::string_view text, std::vector<double>& values) const {
    const std::string_view word = unquoted(unbraced(text));
    const auto item = std::find(items_.begin(), items_.end(), word);
    std::size_t index = static_cast<std::size_t>(item - items_.begin());
    if (item == items_.end() && (parse(word, index) != std::errc() || index >= items_.size())) {
        std::string list;
        for (const std::string& name : items_) list += (list.empty() ? "" : ", ") + name;
        return "takes one of " + list + "; got " + quoted(word) + did_you_mean(word, items_);
    }
    values = {static_cast<double>(index)};
    return {};
}

std::string Knob::parse_numbers(std::string_view text, std::vector<double>& values) const {
    const auto count = static_cast<std::size_t>(value_count());
    std::string takes = "takes " + std::to_string(count) + " numbers; ";
    if (kind_ == Kind::kFloat) takes = "takes a number; ";
    if (kind_ == Kind::kColor) takes = "takes 3 numbers: red, green, blue; ";
    if (kind_ == Kind::kColorAlpha) takes = "takes 4 numbers: red, green, blue, alpha; ";
    if (kind_ == Kind::kWidthHeight) takes = "takes 2 numbers: width, height; ";

    const auto words = number_words(unbraced(text));
    if (words.empty()) return takes + "got none";
    for (const std::string_view word : words) {
        double value = 0.0;
        const std::string fault = parse_number(word, std::holds_alternative<std::span<float>>(field_), value);
        if (!fault.empty()) return takes + fault;
        values.push_back(value);
    }
    if (values.size() != count) return takes + "got " + std::to_string(values.size());
    return {};
}

bool Knob::accepts_script(std::string_view text) const {
    std::vector<double> values;
    return kind_ == Kind::kCustom || parse_text(text, values).empty();
}

bool Knob::from_script(std::string_view text) {
    if (target_ != nullptr) return target_->from_script(text);
    std::vector<double> values;
    if (!parse_text(text, values).empty()) return false;
    for (std::size_t i = 0; i < values.size(); ++i) write_field(values[i], i);
    changed();
    return true;
}

void Knob::to_script(std::ostream& out, bool quote) const {
    if (target_ != nullptr) return target_->to_script(out, quote);
    if (const auto* floats = std::get_if<std::span<float>>(&field_)) {
        write_numbers<float>(out, *floats, quote);
    } else if (const auto* doubles = std::get_if<std::span<double>>(&field_)) {
        write_numbers<double>(out, *doubles, quote);
    } else if (kind_ == Kind::kMenu) {
        write_item(out, *this, quote);
    } else if (value_count() > 0) {
        out << (get_value() != 0.0 ? "true" : "false");
    }
}

std::string Knob::text(bool quote) const {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    to_script(out, quote);
    return out.str();
}

}  // namespace Zo::Image
