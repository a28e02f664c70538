#include "reading/ReadingLanguages.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace fs = std::filesystem;

namespace lumivale::ReadingLanguages {

namespace {

struct Model {
    std::string_view name; // the model file's name without ".traineddata"
    std::string_view tag;
    std::string_view script; // the model of its script, which reads every language written in it
};

// In this order the installed models are listed.
constexpr std::array<Model, 30> modelTable{{
    {"eng", "en-US", "Latin"},      {"deu", "de-DE", "Latin"},      {"fra", "fr-FR", "Latin"},
    {"spa", "es-ES", "Latin"},      {"ita", "it-IT", "Latin"},      {"por", "pt-BR", "Latin"},
    {"nld", "nl-NL", "Latin"},      {"swe", "sv-SE", "Latin"},      {"dan", "da-DK", "Latin"},
    {"nor", "nb-NO", "Latin"},      {"fin", "fi-FI", "Latin"},      {"pol", "pl-PL", "Latin"},
    {"ces", "cs-CZ", "Latin"},      {"slk", "sk-SK", "Latin"},      {"hun", "hu-HU", "Latin"},
    {"tur", "tr-TR", "Latin"},      {"rus", "ru-RU", "Cyrillic"},   {"ukr", "uk-UA", "Cyrillic"},
    {"ell", "el-GR", "Greek"},      {"heb", "he-IL", "Hebrew"},     {"ara", "ar-SA", "Arabic"},
    {"hin", "hi-IN", "Devanagari"}, {"tha", "th-TH", "Thai"},       {"vie", "vi-VN", "Vietnamese"},
    {"ind", "id-ID", "Latin"},      {"msa", "ms-MY", "Latin"},      {"jpn", "ja-JP", "Japanese"},
    {"chi_sim", "zh-Hans", "HanS"}, {"chi_tra", "zh-Hant", "HanT"}, {"kor", "ko-KR", "Hangul"},
}};

// Read last, after every other language.
constexpr std::array<std::string_view, 6> lastTags{"zh-Hans",  "zh-Hant", "yue-Hans",
                                                   "yue-Hant", "ja-JP",   "ko-KR"};

// Where the engine finds its models: TESSDATA_PREFIX names the folder itself, as the engine
// reads it.
fs::path modelFolder() {
    const char* prefix = std::getenv("TESSDATA_PREFIX");
    return prefix && *prefix ? fs::path(prefix) : fs::path("/usr/share/tesseract-ocr/5/tessdata");
}

bool installed(std::string_view model) {
    std::error_code ec;
    return fs::is_regular_file(modelFolder() / (std::string(model) + ".traineddata"), ec);
}

std::string_view baseOf(std::string_view tag) {
    return tag.substr(0, tag.find_first_of("-_"));
}

// The model for a tag: the one with the same tag, else the first of the same language.
const Model* modelFor(std::string_view tag) {
    for (const auto& m : modelTable)
        if (m.tag == tag) return &m;
    for (const auto& m : modelTable)
        if (baseOf(m.tag) == baseOf(tag)) return &m;
    return nullptr;
}

// "de_DE.UTF-8@euro" → "de-DE"; "C", "POSIX" and "" name no language.
std::string tagOfLocale(std::string_view locale) {
    locale = locale.substr(0, locale.find_first_of(".@"));
    if (locale.empty() || locale == "C" || locale == "POSIX") return {};
    std::string tag(locale);
    std::replace(tag.begin(), tag.end(), '_', '-');
    return tag;
}

} // namespace

std::vector<std::string> supported() {
    std::vector<std::string> tags;
    for (const auto& m : modelTable)
        if (installed(m.name)) tags.emplace_back(m.tag);
    if (tags.empty()) tags.emplace_back("en-US");
    return tags;
}

std::vector<std::string> preferred() {
    std::vector<std::string> tags;
    if (const char* language = std::getenv("LANGUAGE"); language && *language) {
        std::string_view rest(language);
        while (!rest.empty()) {
            const size_t colon = rest.find(':');
            if (std::string tag = tagOfLocale(rest.substr(0, colon)); !tag.empty())
                tags.push_back(std::move(tag));
            rest = colon == std::string_view::npos ? std::string_view() : rest.substr(colon + 1);
        }
        if (!tags.empty()) return tags;
    }
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(name);
        if (!value || !*value) continue;
        if (std::string tag = tagOfLocale(value); !tag.empty()) tags.push_back(std::move(tag));
        break;
    }
    return tags;
}

std::vector<std::string> defaults(const std::vector<std::string>& preferred,
                                  const std::vector<std::string>& supported) {
    std::vector<std::string> result;
    if (std::find(supported.begin(), supported.end(), "en-US") != supported.end())
        result.emplace_back("en-US");
    for (const std::string& p : preferred) {
        const std::string base(baseOf(p));
        const auto match = std::find_if(supported.begin(), supported.end(), [&](const auto& s) {
            return s == p || s == base || s.starts_with(base + "-");
        });
        if (match != supported.end() &&
            std::find(result.begin(), result.end(), *match) == result.end())
            result.push_back(*match);
    }
    if (result.empty() && !supported.empty()) result.push_back(supported.front());
    std::stable_partition(result.begin(), result.end(), [](const std::string& tag) {
        return std::find(lastTags.begin(), lastTags.end(), tag) == lastTags.end();
    });
    return result;
}

std::string models(const std::vector<std::string>& tags) {
    std::vector<std::string_view> names;
    for (const std::string& tag : tags) {
        const Model* m = modelFor(tag);
        if (!m) continue;
        // The script's model also reads the other languages of the script that a screen mixes
        // in (a German street name on an English map), where the language's own model would
        // misread their letters.
        const std::string_view name = installed(m->script) ? m->script
                                      : installed(m->name) ? m->name
                                                           : std::string_view();
        if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    if (names.empty()) return "eng";
    std::string joined(names.front());
    for (size_t i = 1; i < names.size(); ++i)
        joined.append("+").append(names[i]);
    return joined;
}

} // namespace lumivale::ReadingLanguages
