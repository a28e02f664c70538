#include "reading/ReadingLanguages.h"

#include "support/TempDir.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>

namespace lumivale {
namespace {

using Tags = std::vector<std::string>;

// Sets or, with nothing, unsets a variable; every test sets all it reads, so none is put back.
void setEnv(const char* name, const std::optional<std::string>& value) {
    value ? setenv(name, value->c_str(), 1) : unsetenv(name);
}

TEST(ReadingLanguagesTest, DefaultsPutEnglishFirstThenPreferredMatchesAndEastAsianLast) {
    const struct {
        const char* name;
        Tags preferred, supported, expected;
    } cases[] = {
        {"regions", {"de-DE", "fr_CH"}, {"en-US", "fr-FR", "de-DE"}, {"en-US", "de-DE", "fr-FR"}},
        {"no prefix match, no English: first", {"e"}, {"fr-FR", "es-ES"}, {"fr-FR"}},
        {"nothing supported", {"de-DE"}, {}, {}},
        // The language's first tag, even over the exact one.
        {"first of the language", {"pt-PT"}, {"en-US", "pt-BR", "pt-PT"}, {"en-US", "pt-BR"}},
        {"bare languages", {"sv", "da-DK"}, {"en-US", "sv-SE", "da"}, {"en-US", "sv-SE", "da"}},
        {"once each", {"de-AT", "xx-YY", "de-CH", "en-US"}, {"en-US", "de-DE"}, {"en-US", "de-DE"}},
        {"Chinese, Japanese and Korean keep their order after the rest",
         {"ko-KR", "zh-Hant", "ru-RU", "ja-JP"},
         {"ja-JP", "ko-KR", "zh-Hant", "ru-RU"},
         {"ru-RU", "ko-KR", "zh-Hant", "ja-JP"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ReadingLanguages::defaults(c.preferred, c.supported), c.expected);
    }
}

TEST(ReadingLanguagesTest, PreferredComesFromLanguageElseTheLocale) {
    const std::nullopt_t none = std::nullopt;
    const char* const names[] = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};
    const struct {
        const char* name;
        std::optional<std::string> values[4]; // of `names`
        Tags expected;
    } cases[] = {
        {"LANGUAGE lists several", {"de_DE.UTF-8::fr_CH:en:", "C.UTF-8"}, {"de-DE", "fr-CH", "en"}},
        {"empty LANGUAGE: LC_ALL", {"", "de_DE.UTF-8", "fr_FR.UTF-8", "es_ES.UTF-8"}, {"de-DE"}},
        {"LC_MESSAGES after LC_ALL", {none, none, "pt_BR.UTF-8", "es_ES.UTF-8"}, {"pt-BR"}},
        {"LANG last, a modifier gone", {none, "", "", "sr_RS@latin"}, {"sr-RS"}},
        {"C names no language, and hides LANG", {none, "C.UTF-8", none, "de_DE.UTF-8"}, {}},
        {"POSIX neither", {none, none, "POSIX", "de_DE.UTF-8"}, {}},
        {"nothing set", {}, {}},
        {"LANGUAGE of C only: the locale", {"C", "it_IT.UTF-8"}, {"it-IT"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (int i = 0; i < 4; ++i)
            setEnv(names[i], c.values[i]);
        EXPECT_EQ(ReadingLanguages::preferred(), c.expected);
    }
}

// A model folder holding empty files of these names, ".traineddata" added to names without a dot.
std::string modelFolder(const test::TempDir& dir, const std::vector<std::string>& files) {
    for (const auto& file : files)
        test::writeFile(dir.file("tessdata/" + file +
                                 (file.find('.') == std::string::npos ? ".traineddata" : "")),
                        "");
    std::filesystem::create_directories(dir.file("tessdata"));
    return dir.file("tessdata");
}

TEST(ReadingLanguagesTest, SupportedAndModelsFollowTheInstalledModels) {
    const struct {
        const char* name;
        std::vector<std::string> files;
        Tags supported, tags;
        std::string models;
    } cases[] = {
        // Known models in the table's order, helpers and strangers skipped; the models of the
        // tags in the given order, each once, a region finding its language.
        {"several",
         {"chi_sim", "deu", "eng", "osd", "equ", "xyz", "fra.txt", "kor"},
         {"en-US", "de-DE", "zh-Hans", "ko-KR"},
         {"de-AT", "en-US", "en-GB", "de-DE"},
         "deu+eng"},
        {"a script's model reads all its languages",
         {"eng", "deu", "Latin", "hin", "Cyrillic"},
         {"en-US", "de-DE", "hi-IN"},
         {"en-US", "de-DE", "hi-IN", "ru-RU", "fr-FR"},
         "Latin+hin+Cyrillic"},
        {"not installed", {"eng", "chi_tra"}, {"en-US", "zh-Hant"}, {"fr", "zh-Hant"}, "chi_tra"},
        {"no English; none installed or known", {"ukr"}, {"uk-UA"}, {"fr", "tlh", ""}, "eng"},
        {"no model: English", {"osd", "readme.txt"}, {"en-US"}, {}, "eng"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        test::TempDir dir;
        setEnv("TESSDATA_PREFIX", modelFolder(dir, c.files));
        EXPECT_EQ(ReadingLanguages::supported(), c.supported);
        EXPECT_EQ(ReadingLanguages::models(c.tags), c.models);
    }
    setEnv("TESSDATA_PREFIX", "/nonexistent/tessdata");
    EXPECT_EQ(ReadingLanguages::supported(), Tags{"en-US"});
}

} // namespace
} // namespace lumivale
